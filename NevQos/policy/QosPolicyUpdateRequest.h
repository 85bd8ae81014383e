// One entry of the policy update queue: what must be programmed, and why.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <utility>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/platform/zub/ValueText.h"
#include "NevQos/policy/QosPolicyMapClassData.h"
#include "NevQos/types/QosPolicyMapKey.h"

namespace Nev {

enum QosPolicyUpdateReason : std::uint32_t {
   updateReasonPolicyChange = 0,
   updateReasonConfigVersionUpdateTime = 1,
   updateReasonAclChange = 2,
   updateReasonIntfChange = 3,
};
ENUM_TEXT_DECLARE( QosPolicyUpdateReason );

class QosPolicyUpdateRequest {
 public:
   // The empty request: a policy change with no key text, not a removal.
   QosPolicyUpdateRequest()
       : QosPolicyUpdateRequest( updateReasonPolicyChange, Zub::String(), false ) {}
   QosPolicyUpdateRequest( QosPolicyUpdateReason reasonType, Zub::String reasonKey, bool remove )
       : reasonType_( reasonType ), reasonKey_( std::move( reasonKey ) ), remove_( remove ) {}
   // Reads the `Value(...)` form; only a null policyData ("None") can be read back.
   QosPolicyUpdateRequest( char const* begin, char const* end );

   QosPolicyUpdateReason reasonType() const noexcept { return reasonType_; }
   Zub::String const& reasonKey() const noexcept { return reasonKey_; }
   bool remove() const noexcept { return remove_; }
   // What to program, for ACL and interface changes.
   Zub::Ptr< QosPolicyMapClassData > const& policyData() const noexcept { return policyData_; }
   void policyDataIs( Zub::Ptr< QosPolicyMapClassData > p ) { policyData_ = std::move( p ); }
   // Which policy map, for policy changes.
   QosPolicyMapKey const& pmapKey() const noexcept { return pmapKey_; }
   void pmapKeyIs( QosPolicyMapKey k ) { pmapKey_ = std::move( k ); }
   // Which interface, for interface changes.
   Qos::IntfPairKey const& intfPair() const noexcept { return intfPair_; }
   void intfPairIs( Qos::IntfPairKey k ) { intfPair_ = k; }
   // Which ACL, for ACL and interface changes. policyData's own key (and option) is one slot for
   // both families of a match, overwritten by every request; the request keeps the key it was made
   // for, and the slot is set back to it when the request is served.
   AclKey const& aclKey() const noexcept { return aclKey_; }
   void aclKeyIs( AclKey k ) { aclKey_ = std::move( k ); }
   // The same for the match option the ACL's data lives under.
   Qos::ClassMapMatchOption matchOption() const noexcept { return matchOption_; }
   void matchOptionIs( Qos::ClassMapMatchOption o ) { matchOption_ = o; }

   // policyData compares by identity.
   bool operator==( QosPolicyUpdateRequest const& ) const noexcept = default;
   std::strong_ordering operator<=>( QosPolicyUpdateRequest const& o ) const noexcept;
   bool operator!() const { return *this == QosPolicyUpdateRequest(); }

 private:
   QosPolicyUpdateReason reasonType_;
   Zub::String reasonKey_;
   bool remove_;
   Zub::Ptr< QosPolicyMapClassData > policyData_;
   QosPolicyMapKey pmapKey_;
   Qos::IntfPairKey intfPair_;
   AclKey aclKey_;
   Qos::ClassMapMatchOption matchOption_ = Qos::matchOptionNone;
};

Zub::String valueToStrep( QosPolicyUpdateRequest const& r );
std::ostream& operator<<( std::ostream& os, QosPolicyUpdateRequest const& r );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, QosPolicyUpdateRequest& out );

}  // namespace Nev
