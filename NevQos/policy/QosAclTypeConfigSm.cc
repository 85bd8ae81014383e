#include "NevQos/policy/QosAclTypeConfigSm.h"

#include "NevQos/log/TraceHandles.h"

namespace Nev {

QosAclTypeConfigSm::QosAclTypeConfigSm( Acl::AclType type, QosAclSm* qosAclSm )
    : type_( type ), qosAclSm_( qosAclSm ) {
   handleInitialized();
}

QosAclTypeConfigSm::~QosAclTypeConfigSm() = default;

void QosAclTypeConfigSm::handleInitialized() {
   ZUB_TRACE( nevQosTrace, 3, "QosAclTypeConfigSm::handleInitialized " << type() );
   initialized_ = true;
}

void QosAclTypeConfigSm::doPrepareToDie() {
   ZUB_TRACE( nevQosTrace, 3, "QosAclTypeConfigSm::doPrepareToDie " << type() );
   initialized_ = true;
}

void QosAclTypeConfigSm::handleVerify() {
   ZUB_TRACE( nevQosTrace, 5, "QosAclTypeConfigSm::handleVerify " << type() );
}

}  // namespace Nev
