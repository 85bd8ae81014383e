// One ACL type (IPv4, IPv6): gives the type its place in the verification walk.
#pragma once

#include <tuple>

#include "NevQos/platform/entities/AclTypes.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/platform/zub/Ptr.h"

namespace Nev {

class QosAclSm;

class QosAclTypeConfigSm : public Zub::PtrInterface {
 public:
   QosAclTypeConfigSm( Acl::AclType type, QosAclSm* qosAclSm );
   ~QosAclTypeConfigSm() override;

   Acl::AclType type() const { return type_; }
   QosAclSm* qosAclSm() const { return qosAclSm_; }
   bool initialized() const { return initialized_; }
   auto zubCtorParams() const {
      return std::make_tuple( Zub::ctorParam( "type", type_ ),
                              Zub::ctorParam( "qosAclSm", qosAclSm_ ) );
   }

   void handleInitialized();
   void doPrepareToDie();
   // The type has no hardware of its own to compare: it only marks its place in the walk.
   void handleVerify();

 private:
   Acl::AclType type_;
   QosAclSm* qosAclSm_;
   bool initialized_ = false;
};

}  // namespace Nev
