// One policy map as it goes to one ACL group of one service policy: compiles the classes of a
// policy map status into class state machines in priority order, commits them as one batch,
// counts access groups, keeps the resource-exhausted state and records compile latency.
#pragma once

#include <cstdint>
#include <tuple>

#include "NevQos/classes/QosPolicyClassSm.h"
#include "NevQos/platform/entities/AclSliceHwStatus.h"
#include "NevQos/platform/entities/ClassMapStatus.h"
#include "NevQos/platform/entities/PolicyMapStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/types/QosClassMapKey.h"
#include "NevQos/types/QosPolicyMapKey.h"
#include "NevQos/types/QosPolicyMapState.h"

namespace Nev {

class QosAclSm;

class QosPolicyMapSm : public Zub::PtrInterface {
 public:
   class ZubPmapState : public QosPolicyMapState::Notifiee {
    public:
      explicit ZubPmapState( QosPolicyMapSm* sm ) : sm_( sm ) {}
      void onDirty() override { sm_->handleDirty(); }

    private:
      QosPolicyMapSm* sm_;
   };
   class ZubClock : public Kesh::TimerWheel::NotifieeConst {
    public:
      explicit ZubClock( QosPolicyMapSm* sm ) : sm_( sm ) {}
      void onTime() override {
         if( !zombie() ) sm_->handleDeferredDeletion();
      }

    private:
      QosPolicyMapSm* sm_;
   };

   QosPolicyMapSm( QosPolicyMapKey const& key, QosAclSm* qosAclSm,
                   Zub::Ptr< Qos::PolicyMapStatus const > const& pmap,
                   Zub::Ptr< QosPolicyMapState > const& pmapState,
                   Zub::Ptr< Kesh::TimerWheel > const& clock );
   ~QosPolicyMapSm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   QosPolicyMapKey const& key() const { return key_; }
   Zub::Name const& pmapName() const { return key_.pmapName(); }
   Qos::MapType pmapType() const { return key_.pmapType(); }
   Qos::Direction direction() const { return key_.direction(); }
   Zub::Name const& coppPolicyMapName() const { return coppPolicyMapName_; }
   QosAclSm* qosAclSm() const { return qosAclSm_; }
   Zub::Ptr< Qos::PolicyMapStatus const > const& pmap() const { return pmap_; }
   Zub::Ptr< QosPolicyMapState > const& pmapState() const { return pmapState_.get(); }
   Zub::Ptr< Kesh::TimerWheel > const& clock() const { return clock_.get(); }
   unsigned int macAccessRuleCount() const { return macAccessRuleCount_; }
   unsigned int ipv4AccessGroupCount() const { return ipv4AccessGroupCount_; }
   unsigned int ipv6AccessGroupCount() const { return ipv6AccessGroupCount_; }
   Zub::Seconds totalProcessTime() const { return totalProcessTime_; }
   Zub::Seconds lastLatency() const { return lastLatency_; }
   Zub::Seconds maxLatency() const { return maxLatency_; }
   Zub::Seconds startupLatency() const { return startupLatency_; }
   bool initialized() const { return initialized_; }
   ZUB_SM_CHILDREN( policyClassSm, QosClassMapKey, QosPolicyClassSm )
   // The service policy this map belongs to.
   Qos::ServicePolicyKey spKey() const {
      return Qos::ServicePolicyKey( pmapType(), direction(), pmapName() );
   }
   Qos::PolicyMapHwStatusKey hwKey() const {
      return Qos::PolicyMapHwStatusKey( direction(), pmapName() );
   }
   auto zubCtorParams() const {
      return std::make_tuple(
            Zub::ctorParam( "key", key_ ), Zub::ctorParam( "qosAclSm", qosAclSm_ ),
            Zub::ctorParam( "pmap", pmap_ ), Zub::ctorParam( "pmapState", pmapState() ),
            Zub::ctorParam( "clock", clock() ) );
   }

   // Virtual operations, in slot order.
   virtual void intfUpdated( Qos::IntfPairKey const& intfPair, bool add );
   virtual void zubDoZombieReactors( bool zombie );

   void handleInitialized();
   void createSm();
   void deleteSm();
   void versionUpdated();
   void handleDirty();
   void handleDeferredDeletion();
   bool sharedPolicyMap() const;
   bool verifyNumOfClasses() const;
   void updateIpAccessGroupCounts( Zub::Ptr< Qos::ClassMapStatus const > const& cmap );
   void doRecordLatency( Zub::Seconds startTime );
   void doPrepareToDie();
   void counterUpdateRequest();
   // Asserts that the class machines mirror the map's status, and verifies each class.
   void handleVerify();
   // The map's header, then each class followed by an empty line.
   void showAcls( std::uint32_t socket, std::uint32_t unit, bool detail );
   // Whether the map reports through a hardware status entry: the system-wide control-plane
   // policy of a chip without per-interface CoPP has none.
   bool hasHwStatus() const;
   // The hardware status of this map in its ACL group: null for a map without one, and it must
   // exist for the others.
   Zub::Ptr< Qos::PolicyMapHwStatus > pmapSliceHwStatus() const;
   // The update queue's account of the map's requests, entered and finished.
   void requestEntered();
   void requestFinished();
   // Whether the map has left its service policy (the policy, or its ACL group, went), its
   // state no longer being the helper's; its queued requests are still served.
   bool retired() const;

 private:
   // Where each class of the map gets its state machine, in priority order.
   void createPolicyClassSm( Zub::Name const& cmapName,
                             Zub::Ptr< Qos::ClassMapStatus const > const& cmap,
                             Zub::Ptr< Qos::ClassAction const > const& caction,
                             std::uint16_t cmapPrio, bool classDefault );
   Zub::Ptr< Qos::ClassMapStatus const > classMap( Zub::Name const& cmapName ) const;
   // Whether the static control-plane classes and the class-default get a machine here.
   bool staticCoppClassesCompiled() const;
   bool classDefaultCompiled() const;
   // Verifies the class `cmapName` when it must have a machine, else asserts it has none.
   void verifyClass( Zub::Name const& cmapName, bool present );
   // A map that did not fit has nothing in hardware and says it failed.
   void verifyFailed( Zub::Ptr< Qos::PolicyMapHwStatus > const& hwStatus );
   // The end of a compile or an interface change: the status moves, unless the driver moves it.
   void compileEnded();

   QosPolicyMapKey key_;
   Zub::Name coppPolicyMapName_{ "copp-system-policy" };
   QosAclSm* qosAclSm_;
   Zub::Ptr< Qos::PolicyMapStatus const > pmap_;
   Zub::Input< QosPolicyMapState, ZubPmapState > pmapState_;
   Zub::Input< Kesh::TimerWheel, ZubClock > clock_;
   unsigned int macAccessRuleCount_ = 0;
   unsigned int ipv4AccessGroupCount_ = 0;
   unsigned int ipv6AccessGroupCount_ = 0;
   Zub::Seconds totalProcessTime_ = 0.0;
   Zub::Seconds lastLatency_ = 0.0;
   Zub::Seconds maxLatency_ = 0.0;
   Zub::Seconds startupLatency_ = 0.0;
   bool initialized_ = false;
};

}  // namespace Nev
