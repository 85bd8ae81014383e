// What the four ACL-owning children of a class match share: one ACL of one family, born with the
// match, told of interfaces, and torn down with it. On the immediate road (a helper without
// asynchronous TCAM operations) a child compiles and commits inside its own handleInitialized;
// on the deferred road it only queues requests that QosAclSm serves one at a time.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/nev/AclData.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/nev/VerifyData.h"
#include "NevQos/platform/zub/Ptr.h"
#include "NevQos/policy/QosPolicyUpdateRequest.h"
#include "NevQos/types/QosClassCounterData.h"
#include "NevQos/types/QosClassData.h"

namespace NevHelper {
class QosAclHelper;
}  // namespace NevHelper

namespace Nev {

class QosAclSm;
class QosClassMatchSm;
class QosPolicyMapSm;
class QosPolicyMapState;

class QosClassMatchChildSm : public Zub::PtrInterface {
 public:
   // The match machine outlives its children; they reach the class through it.
   QosClassMatchChildSm( AclKey const& key, QosClassMatchSm* classMatchSm,
                         Qos::ClassMapMatchOption matchOption );
   ~QosClassMatchChildSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   AclKey const& key() const { return key_; }
   Zub::Name const& aclName() const { return key_.aclName(); }
   Acl::AclType aclType() const { return key_.aclType(); }
   QosAclSm* qosAclSm() const;
   QosPolicyMapSm* pmapSm() const;
   Zub::Ptr< QosClassData > const& classData() const;
   QosClassMatchSm* classMatchSm() const { return classMatchSm_; }
   Qos::ClassMapMatchOption matchOption() const {
      return static_cast< Qos::ClassMapMatchOption >( ownField() );
   }
   bool destroying() const { return ownFlag( destroyingFlag ); }
   bool initialized() const { return ownFlag( initializedFlag ); }
   // The last compile programmed no rule because the list's family may not sit beside the other
   // family's in this map on this chip (logged): there is nothing in hardware to compare.
   bool rulesIgnoredBesideOtherFamily() const { return ownFlag( rulesIgnoredFlag ); }

   // The ACL's record in the class data: its number and flags; null once the match data went.
   Zub::Ptr< AclData > aclData() const;

   // True when the ACL stands or needs nothing.
   virtual bool createAcl() = 0;
   virtual void intfUpdated( Qos::IntfPairKey const& intfPair, bool add );
   virtual QosClassCounterData counterUpdateRequest();
   // The ACL's header; with `detail`, each child adds its rules.
   virtual void showAcl( std::uint32_t socket, std::uint32_t unit, bool detail );
   // Compares the ACL with what the helper reads back from the hardware.
   virtual void handleVerify() = 0;
   void destroyAcl();
   void commitAcl();
   void doPrepareToDie();

 protected:
   // Called by the constructor of each concrete child, once its own members stand.
   void handleInitialized();
   void matchOptionIs( Qos::ClassMapMatchOption o ) { ownFieldIs( o ); }
   NevHelper::QosAclHelper& helper() const;
   QosPolicyMapState& pmapState() const;
   Zub::Ptr< QosClassMatchData > matchData() const;
   // (classData.priority << 8) | matchData.priority: the number of every non-IP ACL.
   std::int32_t optionAclNumber() const;
   // (classData.priority << 23) | (matchData.priority << 20): the number of an access group.
   std::int32_t accessGroupAclNumber() const;
   // Where mismatches with the hardware are reported; null without a report.
   VerifyData* verifyReport() const;
   // A child found in the walk after its teardown began is itself a mismatch.
   void reportIfDestroying() const;
   void rulesIgnoredBesideOtherFamilyIs( bool ignored ) { ownFlagIs( rulesIgnoredFlag, ignored ); }
   // A hook for the road-specific start of a child, before the ACL data is made.
   virtual void prepareInitialized() {}
   // Deferred mode: queues this child's ACL with the parent.
   void enqueueRequest( QosPolicyUpdateReason reasonType, Qos::IntfPairKey const& intfPair,
                        bool remove );
   // Whether destroyAcl goes on to the helper's cleanupAcl.
   virtual bool cleanupAfterDestroy() const = 0;
   // What destroyAcl leaves in aclNumber.
   virtual void aclNumberAfterDestroy( AclData& aclData ) const;

 private:
   // The marks and the match option sit in the object's flag word: a child is made per class
   // copy.
   static constexpr std::uint32_t destroyingFlag = 1u;
   static constexpr std::uint32_t initializedFlag = 2u;
   static constexpr std::uint32_t rulesIgnoredFlag = 4u;

   AclKey key_;
   QosClassMatchSm* classMatchSm_;
};

}  // namespace Nev
