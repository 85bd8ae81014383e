#include "NevQos/match/QosClassMatchOptionSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/policy/QosAclSm.h"

namespace Nev {

QosClassMatchOptionSm::QosClassMatchOptionSm( AclKey const& key, QosAclSm* qosAclSm,
                                              QosPolicyMapSm* pmapSm,
                                              Zub::Ptr< QosClassData > const& classData,
                                              QosClassMatchSm* classMatchSm,
                                              Qos::ClassMapMatchOption matchOption,
                                              QosPMapAclTypes pmapAclTypes )
    : QosClassMatchChildSm( key, qosAclSm, pmapSm, classData, classMatchSm, matchOption )
    , pmapAclTypes_( pmapAclTypes ) {
   handleInitialized();
}

Zub::String QosClassMatchOptionSm::createAclName( NevHelper::QosAclHelper const& helper,
                                                  Acl::AclType aclType,
                                                  Qos::ClassMapMatchOption matchOpt,
                                                  std::uint32_t matchPrio ) {
   return helper.createAclName( aclType, matchOpt, matchPrio );
}

bool QosClassMatchOptionSm::createAcl() {
   auto const data = aclData();
   if( !data->dirty() && data->installed() ) return true;
   if( destroying() ) return true;
   data->aclNumberIs( optionAclNumber() );
   auto const hw = qosAclSm()->qosAclHwStatus();
   bool supported = true;
   switch( matchOption() ) {
      case Qos::matchOptionVlan:
         supported = hw->vlanClassMatchSupported();
         break;
      case Qos::matchOptionCos:
         supported = hw->cosClassMatchSupported();
         break;
      case Qos::matchOptionVlanCos:
         supported = hw->vlanClassMatchSupported() && hw->cosClassMatchSupported();
         break;
      case Qos::matchOptionDscpEcn:
         supported = hw->dscpEcnClassMatchSupported();
         break;
      default:
         break;
   }
   if( !supported ) return true;  // nothing is programmed for a match the chip cannot make
   // The rule compiles of the VLAN, COS, DSCP/ECN, MAC and built-in kinds plug in here.
   ZUB_TRACE( nevQosTrace, 5, "createAcl " << key() << " option " << matchOption() );
   return true;
}

bool QosClassMatchOptionSm::cleanupAfterDestroy() const {
   return classMatchSm()->allMatchOptionSmDestroying();
}

}  // namespace Nev
