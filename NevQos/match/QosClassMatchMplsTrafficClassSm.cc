#include "NevQos/match/QosClassMatchMplsTrafficClassSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/log/TraceHandles.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "zub/Format.h"

namespace Nev {

QosClassMatchMplsTrafficClassSm::QosClassMatchMplsTrafficClassSm(
      AclKey const& key, QosAclSm* qosAclSm, QosPolicyMapSm* pmapSm,
      Zub::Ptr< QosClassData > const& classData, QosClassMatchSm* classMatchSm,
      QosPMapAclTypes pmapAclTypes )
    : QosClassMatchChildSm( key, qosAclSm, pmapSm, classData, classMatchSm,
                            Qos::matchOptionMplsTrafficClass )
    , pmapAclTypes_( pmapAclTypes ) {
   handleInitialized();
}

Zub::String QosClassMatchMplsTrafficClassSm::createAclName( NevHelper::QosAclHelper const& helper,
                                                            Acl::AclType aclType,
                                                            std::uint32_t matchPrio ) {
   Zub::Name const& base = aclType == Acl::ipv6() ? helper.mplsTrafficClassIpv6AclName()
                                                  : helper.mplsTrafficClassAclName();
   return Zub::format( "%s-%u", base.charPtr(), matchPrio );
}

bool QosClassMatchMplsTrafficClassSm::createAcl() {
   auto const data = aclData();
   if( !data->dirty() && data->installed() ) return true;
   if( destroying() ) return true;
   data->aclNumberIs( optionAclNumber() );
   // The rule compile of the traffic-class ranges plugs in here.
   ZUB_TRACE( nevQosTrace, 5, "createAcl " << key() );
   return true;
}

bool QosClassMatchMplsTrafficClassSm::cleanupAfterDestroy() const {
   return classMatchSm()->allMplsTrafficClassSmDestroying();
}

}  // namespace Nev
