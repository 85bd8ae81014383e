// The arguments of one deferred compile of a class match. The match state machine owns it; a
// queued update request holds it, and through it the class data and the policy map's state
// machine, alive until the request is served.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/types/QosClassData.h"

namespace Nev {

class QosPolicyMapSm;

class QosPolicyMapClassData : public Zub::PtrInterface {
 public:
   QosPolicyMapClassData( Zub::Ptr< QosPolicyMapSm > const& pmapSm,
                          Zub::Ptr< QosClassData > const& curClassData,
                          Zub::Ptr< Qos::ClassMapMatch const > const& curClassMatch );
   ~QosPolicyMapClassData() override;

   Zub::Ptr< QosPolicyMapSm > const& pmapSm() const { return pmapSm_; }
   Zub::Ptr< QosClassData > const& curClassData() const { return curClassData_; }
   Zub::Ptr< Qos::ClassMapMatch const > const& curClassMatch() const { return curClassMatch_; }
   Qos::ClassMapMatchOption matchOption() const { return matchOption_; }
   void matchOptionIs( Qos::ClassMapMatchOption o ) { matchOption_ = o; }
   std::uint32_t matchPrio() const { return matchPrio_; }
   void matchPrioIs( std::uint32_t p ) { matchPrio_ = p; }
   // The configured list of an access-group match; null when the list is not configured.
   Zub::Ptr< Acl::AclConfig const > const& aclConfig() const { return aclConfig_; }
   void aclConfigIs( Zub::Ptr< Acl::AclConfig const > const& c ) { aclConfig_ = c; }
   // One slot shared by the IPv4 and IPv6 ACL of a match: the key of its latest request.
   AclKey const& aclKey() const { return aclKey_; }
   void aclKeyIs( AclKey const& k ) { aclKey_ = k; }

 private:
   Zub::Ptr< QosPolicyMapSm > pmapSm_;
   Zub::Ptr< QosClassData > curClassData_;
   Zub::Ptr< Qos::ClassMapMatch const > curClassMatch_;
   Qos::ClassMapMatchOption matchOption_ = Qos::matchOptionNone;
   std::uint32_t matchPrio_ = 0;
   Zub::Ptr< Acl::AclConfig const > aclConfig_;
   AclKey aclKey_;
};

}  // namespace Nev
