#include "NevQos/match/QosClassMatchMplsTrafficClassSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/match/MatchOptionCompiler.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"
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
   MatchOptionTarget const target{
      *qosAclSm(), *pmapSm(), classData(), key(), matchOption(), data
   };
   return createClassMatchMplsTrafficClassAcl( target, classMatchSm()->classMatch() );
}

bool QosClassMatchMplsTrafficClassSm::cleanupAfterDestroy() const {
   return classMatchSm()->allMplsTrafficClassSmDestroying();
}

}  // namespace Nev
