// One match of one class: decides what kind of hardware ACL the match compiles to, creates the
// child that owns each ACL (one per ACL family), and keeps in policyData what a deferred compile
// needs: only a helper with asynchronous TCAM operations has deferred compiles, so the record is
// made with the first request. It reacts to nothing by itself; its parent class calls every
// operation.
#pragma once

#include <cstdint>

#include "NevQos/match/QosClassMatchAclSm.h"
#include "NevQos/match/QosClassMatchDefaultSm.h"
#include "NevQos/match/QosClassMatchMplsTrafficClassSm.h"
#include "NevQos/match/QosClassMatchOptionSm.h"
#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/policy/QosPolicyMapClassData.h"
#include "NevQos/policy/QosPolicyUpdateRequest.h"
#include "NevQos/types/QosClassConfig.h"
#include "NevQos/types/QosClassCounterData.h"
#include "NevQos/types/QosClassData.h"
#include "NevQos/types/QosClassMapKey.h"

namespace Nev {

class QosAclSm;
class QosPolicyMapSm;

class QosClassMatchSm : public Zub::PtrInterface {
 public:
   // `config` is the class's.
   QosClassMatchSm( Qos::ClassMapMatchOption matchOption,
                    Zub::Ptr< QosClassConfig const > const& config,
                    Zub::Ptr< QosClassData > const& classData,
                    Zub::Ptr< Qos::ClassMapMatch const > const& classMatch,
                    std::uint32_t matchPrio );
   ~QosClassMatchSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   QosClassMapKey const& key() const { return config_->cmapKey(); }
   Zub::Name const& cmapName() const { return key().cmapName(); }
   Qos::MapType cmapType() const { return key().cmapType(); }
   Qos::ClassMapMatchOption matchOption() const { return matchOption_; }
   QosAclSm* qosAclSm() const { return config_->qosAclSm(); }
   QosPolicyMapSm* pmapSm() const { return config_->pmapSm(); }
   Zub::Ptr< QosClassData > const& classData() const { return classData_; }
   Zub::Ptr< Qos::ClassMapMatch const > const& classMatch() const { return classMatch_; }
   std::uint32_t matchPrio() const { return matchPrio_; }
   // Null until the first deferred request.
   Zub::Ptr< QosPolicyMapClassData > const& policyData() const { return policyData_; }
   bool initialized() const { return ownFlag( initializedFlag ); }

   ZUB_SM_CHILDREN( aclSm, AclKey, QosClassMatchAclSm )
   ZUB_SM_CHILDREN( mplsTrafficClassSm, AclKey, QosClassMatchMplsTrafficClassSm )
   ZUB_SM_CHILDREN( matchOptionSm, AclKey, QosClassMatchOptionSm )
   ZUB_SM_CHILDREN( classDefaultSm, AclKey, QosClassMatchDefaultSm )

   void intfUpdated( Qos::IntfPairKey const& intfPair, bool add );
   QosClassCounterData counterUpdateRequest();
   void showAcl( std::uint32_t socket, std::uint32_t unit, bool detail );
   void handleVerify();
   void doPrepareToDie();
   // Called by the children on the deferred road; `matchOption` is the child's.
   void enqueueRequest( AclKey const& aclKey, Qos::ClassMapMatchOption matchOption,
                        QosPolicyUpdateReason reasonType, Qos::IntfPairKey const& intfPair,
                        bool remove );
   // The hardware counts the IPv4 and the IPv6 ACL of one match in one counter.
   bool sharedQosAclTypesCounterNeeded() const;
   // Whether every child of a family has started its teardown: the last one out cleans up.
   bool allMatchOptionSmDestroying() const;
   bool allMplsTrafficClassSmDestroying() const;
   bool allClassDefaultSmDestroying() const;

 private:
   void handleInitialized();
   void createSm();
   void createClassAclSm();
   void createClassMatchOptionSm();
   void createMatchOptionSm( Acl::AclType aclType );
   void createClassMplsTrafficClassSm();
   void createMplsTrafficClassSm( Acl::AclType aclType );
   void createClassDefaultSm();
   Zub::Ptr< QosClassMatchData > createMatchData( Qos::ClassMapMatchOption option );
   // The configured list of an access-group match; null for other matches and while the list
   // is not configured.
   Zub::Ptr< Acl::AclConfig const > configuredAcl() const;
   void createPolicyData();
   // The families the policy map's non-ACL matches must cover, written to its state.
   QosPMapAclTypes updatePmapAclTypes();
   // The child of an access group exists exactly when its list is configured.
   void verifyAccessGroup();
   void deleteSm();

   Zub::Ptr< QosClassConfig const > config_;
   Zub::Ptr< QosClassData > classData_;
   Zub::Ptr< Qos::ClassMapMatch const > classMatch_;
   Zub::Ptr< QosPolicyMapClassData > policyData_;
   Qos::ClassMapMatchOption matchOption_;
   std::uint32_t matchPrio_;
   // In the object's flag word: a match machine is made per class copy.
   static constexpr std::uint32_t initializedFlag = 1u;
};

}  // namespace Nev
