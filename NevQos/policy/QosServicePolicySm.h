// One service policy: a policy map attached, in one direction, to a set of interfaces. Decides
// how many policy maps the attachment needs in hardware (one per ACL group), creates and
// deletes them, feeds them interface changes, and rebuilds them on a new policy map version.
#pragma once

#include <tuple>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/ServicePolicyStatus.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/policy/QosPolicyMapSm.h"

namespace Nev {

class QosAclSm;

class QosServicePolicySm : public Zub::PtrInterface {
 public:
   class ZubServicePolicyStatus : public Qos::ServicePolicyStatus::Notifiee {
    public:
      explicit ZubServicePolicyStatus( QosServicePolicySm* sm ) : sm_( sm ) {}
      void onVersion() override { sm_->handleVersion(); }
      void onIntfIds( Qos::IntfPairKey const& intfPair ) override { sm_->handleIntf( intfPair ); }
      void onIntfIdszubImmediate() override { sm_->handleIntf(); }

    private:
      QosServicePolicySm* sm_;
   };

   QosServicePolicySm( Qos::ServicePolicyKey const& key, QosAclSm* qosAclSm,
                       Zub::Ptr< Qos::ServicePolicyStatus const > const& servicePolicyStatus,
                       Zub::Ptr< Kesh::TimerWheel > const& clock );
   ~QosServicePolicySm() override;
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   Qos::ServicePolicyKey const& key() const { return key_; }
   Zub::Name const& name() const { return key_.pmapName(); }
   Qos::MapType type() const { return key_.type(); }
   Qos::Direction direction() const { return key_.direction(); }
   QosAclSm* qosAclSm() const { return qosAclSm_; }
   Zub::Ptr< Qos::ServicePolicyStatus const > const& servicePolicyStatus() const {
      return servicePolicyStatus_.get();
   }
   Zub::Ptr< Kesh::TimerWheel > const& clock() const { return clock_; }
   ZUB_SM_CHILDREN( pmapSm, QosPolicyMapKey, QosPolicyMapSm )
   ZUB_SM_FIELD( initialized, bool, false )
   auto zubCtorParams() const {
      return std::make_tuple( Zub::ctorParam( "key", key_ ),
                              Zub::ctorParam( "qosAclSm", qosAclSm_ ),
                              Zub::ctorParam( "servicePolicyStatus", servicePolicyStatus() ),
                              Zub::ctorParam( "clock", clock_ ) );
   }

   // Virtual operations, in slot order.
   virtual void intfUpdated( Qos::IntfPairKey const& intfPair, bool add );
   virtual void zubDoZombieReactors( bool zombie );

   void handleInitialized();
   void createSm();
   void deleteSm( QosPolicyMapKey const& pmapKey );
   void deleteAllSm();
   void versionUpdated();
   void handleVersion();
   void handleIntf( Qos::IntfPairKey const& intfPair );
   void handleIntf();
   void reprogramPMapForIntf( Qos::IntfPairKey const& intfPair );
   void clearPMapCounters();
   void counterUpdateRequest();
   void doPrepareToDie();
   // Asserts that every ACL group of this policy has its map machine, and verifies each.
   void handleVerify();

 private:
   Qos::PolicyMapHwStatusKey hwKey() const {
      return Qos::PolicyMapHwStatusKey( direction(), name() );
   }
   QosPolicyMapKey defaultPmapKey() const;
   // Whether the policy reports through a hardware status entry, and the entry: null for a
   // policy without one, and it must exist for the others.
   bool hasHwStatus() const;
   Zub::Ptr< Qos::PolicyMapHwStatus > pmapSliceHwStatus() const;
   // Whether the interface must wait for the interface list before a map is made for it.
   bool parkSvi( Qos::IntfPairKey const& intfPair ) const;
   bool ethernetNotPresent( Qos::IntfPairKey const& intfPair ) const;
   // The policy's status and version as applied, for a policy with nothing to program now.
   void reportApplied();

   Qos::ServicePolicyKey key_;
   QosAclSm* qosAclSm_;
   Zub::Input< Qos::ServicePolicyStatus const, ZubServicePolicyStatus > servicePolicyStatus_;
   Zub::Ptr< Kesh::TimerWheel > clock_;
};

}  // namespace Nev
