#include "NevQos/match/QosClassMatchDefaultSm.h"

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/match/QosClassMatchSm.h"
#include "NevQos/policy/QosAclSm.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

namespace {

Qos::ClassMapMatchOption defaultOptionOf( Acl::AclType aclType ) {
   return aclType == Acl::ipv6() ? Qos::matchOptionIpv6Acl : Qos::matchOptionIpAcl;
}

}  // namespace

QosClassMatchDefaultSm::QosClassMatchDefaultSm( AclKey const& key, QosClassMatchSm* classMatchSm,
                                                QosPMapAclTypes pmapAclTypes )
    : QosClassMatchChildSm( key, classMatchSm, classMatchSm->matchOption() )
    , pmapAclTypes_( pmapAclTypes ) {
   handleInitialized();
}

void QosClassMatchDefaultSm::prepareInitialized() {
   // On the deferred road the child's enqueue writes this option to the parent's slot.
   matchOptionIs( defaultOptionOf( aclType() ) );
}

bool QosClassMatchDefaultSm::createAcl() {
   auto const data = aclData();
   if( !data->dirty() && data->installed() ) return true;
   if( destroying() ) return true;
   // Only this compile keeps a number that exists.
   if( data->aclNumber() == -1 ) data->aclNumberIs( optionAclNumber() );
   AclCreateError result = helper().precreateAcl( pmapState(), *classData(), matchOption(), key() );
   if( result == aclCreateErrorNone ) {
      result = helper().createDefaultRule( pmapState(), *classData(), matchOption(), key() );
   }
   return !qosAclSm()->updatePolicyMapErrorState( result, pmapSm()->key(), data );
}

bool QosClassMatchDefaultSm::cleanupAfterDestroy() const {
   return classMatchSm()->allClassDefaultSmDestroying();
}

void QosClassMatchDefaultSm::showAcl( std::uint32_t socket, std::uint32_t unit, bool detail ) {
   QosClassMatchChildSm::showAcl( socket, unit, detail );
   if( detail ) {
      helper().showDefaultRule( socket, unit, pmapState(), *classData(), matchOption(), key() );
   }
}

void QosClassMatchDefaultSm::handleVerify() {
   if( helper().asyncTcamOperationsSupported() ) {
      helper().verifyTcamData( *classData(), matchOption(), key() );
      return;
   }
   reportIfDestroying();
   helper().verifyDefaultRule( pmapState(), *classData(), matchOption(), key() );
}

}  // namespace Nev
