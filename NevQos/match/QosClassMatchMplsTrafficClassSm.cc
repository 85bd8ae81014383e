#include "NevQos/match/QosClassMatchMplsTrafficClassSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/match/MatchOptionCompiler.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/platform/zub/Format.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

QosClassMatchMplsTrafficClassSm::QosClassMatchMplsTrafficClassSm( AclKey const& key,
                                                                  QosClassMatchSm* classMatchSm,
                                                                  QosPMapAclTypes pmapAclTypes )
    : QosClassMatchChildSm( key, classMatchSm, Qos::matchOptionMplsTrafficClass )
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

// Kept for a caller that wants it: the class match leaves traffic-class children out of its show.
void QosClassMatchMplsTrafficClassSm::showAcl( std::uint32_t socket, std::uint32_t unit,
                                               bool detail ) {
   QosClassMatchChildSm::showAcl( socket, unit, detail );
   if( detail ) {
      helper().showMplsTrafficClassRule( socket, unit, pmapState(), *classData(), matchOption(),
                                         key() );
   }
}

// The deferred road does not change the check here: there is no summary form of it.
void QosClassMatchMplsTrafficClassSm::handleVerify() {
   reportIfDestroying();
   helper().verifyMplsTrafficClassRule( pmapState(), *classData(), matchOption(), key() );
}

}  // namespace Nev
