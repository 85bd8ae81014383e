// The central state machine of policy-based QoS. It watches the QoS status, the helper and the
// interface list; owns a state machine per map type, ACL type and service policy; and, on a
// chip with asynchronous TCAM operations, serves the policy update queue one request at a time.
#pragma once

#include <cstdint>

#include "NevQos/helpers/QosAclHelper.h"
#include "NevQos/platform/entities/AclConfig.h"
#include "NevQos/platform/entities/AclHwStatus.h"
#include "NevQos/platform/entities/AclSliceHwStatus.h"
#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/platform/entities/HwEpochStatus.h"
#include "NevQos/platform/entities/HwStatus.h"
#include "NevQos/platform/entities/InputConfig.h"
#include "NevQos/platform/entities/NamedPolicerStatus.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/platform/entities/SliceHwStatus.h"
#include "NevQos/platform/entities/SubIntfStatus.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/platform/nev/KernelCoPPConfig.h"
#include "NevQos/platform/nev/KernelCoPPStatus.h"
#include "NevQos/platform/nev/NevBaseSm.h"
#include "NevQos/platform/nev/NevCommonSmData.h"
#include "NevQos/platform/nev/NexthopGroupStatus.h"
#include "NevQos/platform/nev/VerifyData.h"
#include "NevQos/platform/zub/Attribute.h"
#include "NevQos/platform/zub/LinkQueue.h"
#include "NevQos/policy/QosAclTypeConfigSm.h"
#include "NevQos/policy/QosCounterUpdateSm.h"
#include "NevQos/policy/QosPolicyMapTypeSm.h"
#include "NevQos/policy/QosPolicyUpdateRequest.h"
#include "NevQos/policy/QosServicePolicySm.h"

namespace Nev {

class AclData;
class L2ParamsInfo;

class QosAclSm : public NevAsyncBaseSm {
 public:
   // ---- reactors ----
   class ZubQosStatus : public Qos::Status::Notifiee {
    public:
      explicit ZubQosStatus( QosAclSm* sm ) : sm_( sm ) {}
      void onPmapType( Qos::MapType const& type ) override { sm_->handlePolicyMapType( type ); }
      void onPmapTypezubImmediate() override { sm_->handlePolicyMapType(); }
      void onServicePolicyStatus( Qos::ServicePolicyKey const& key ) override {
         sm_->handleServicePolicy( key );
      }
      void onServicePolicyStatuszubImmediate() override { sm_->handleServicePolicy(); }
      void onConfigVersionUpdateTime() override { sm_->handleConfigVersionUpdateTime(); }
      void onClearHwStatusErrorRequestTime() override {
         sm_->handleClearHwStatusErrorRequestTime();
      }
      void onRoutedPortSubIntfQosAclSharing() override { sm_->handleRoutedPortSubIntfAclSharing(); }
      void onNamedPolicer( Zub::Name const& name ) override { sm_->handleNamedPolicer( name ); }

    private:
      QosAclSm* sm_;
   };
   class ZubNamedPolicerStatus : public Qos::NamedPolicerStatus::Notifiee {
    public:
      explicit ZubNamedPolicerStatus( QosAclSm* sm ) : sm_( sm ) {}
      void onParamChangeVersion() override;

    private:
      QosAclSm* sm_;
   };
   class ZubQosHelper : public NevHelper::QosAclHelper::Notifiee {
    public:
      explicit ZubQosHelper( QosAclSm* sm ) : sm_( sm ) {}
      void onAsyncOperationResult() override { sm_->handleAsyncOperationResult(); }
      void onCliWaiting() override { sm_->handleCliWaiting(); }
      void onReprogramAllPMapsRequestTime() override { sm_->reprogramAllPMaps(); }
      void onIntfUpdateCallbackData( IntfUpdateCallbackData const& data ) override {
         sm_->handleIntfUpdateCallback( data );
      }

    private:
      QosAclSm* sm_;
   };
   class ZubReactNcsd : public NevCommonSmData::Notifiee {
    public:
      explicit ZubReactNcsd( QosAclSm* sm ) : sm_( sm ) {}
      void onIntf( Mirel::IntfId const& intfId ) override { sm_->handleIntfUpdate( intfId ); }

    private:
      QosAclSm* sm_;
   };
   class ZubSubIntfStatusDir : public Interface::SubIntfStatusDir::Notifiee {
    public:
      explicit ZubSubIntfStatusDir( QosAclSm* sm ) : sm_( sm ) {}
      void onIntfStatus( Mirel::IntfId const& intfId ) override {
         sm_->handleSubIntfStatus( intfId );
      }

    private:
      QosAclSm* sm_;
   };
   class ZubSubIntfStatus : public Interface::SubIntfStatus::Notifiee {
    public:
      ZubSubIntfStatus( QosAclSm* sm, Mirel::IntfId intfId ) : sm_( sm ), intfId_( intfId ) {}
      void onForwardingModel() override;
      void handleInitialized() { onForwardingModel(); }

    private:
      QosAclSm* sm_;
      Mirel::IntfId intfId_;
   };
   class ZubCliCounterConfig : public Qos::CounterConfig::Notifiee {
    public:
      explicit ZubCliCounterConfig( QosAclSm* sm ) : sm_( sm ) {}
      void onPmapCounterUpdateRequestTime() override { sm_->handleCliPMapCounterUpdateRequest(); }

    private:
      QosAclSm* sm_;
   };
   class ZubCounterConfigDir : public Zub::Dir::Notifiee {
    public:
      explicit ZubCounterConfigDir( QosAclSm* sm ) : sm_( sm ) {}
      void onEntityPtr( Zub::Name const& name ) override { sm_->handleCounterConfig( name ); }

    private:
      QosAclSm* sm_;
   };
   class ZubNexthopGroupStatus : public NexthopGroupStatus::Notifiee {
    public:
      explicit ZubNexthopGroupStatus( QosAclSm* sm ) : sm_( sm ) {}
      void onNexthopIndex( Zub::Name const& name ) override {
         sm_->handleNexthopGroupIndex( name );
      }

    private:
      QosAclSm* sm_;
   };
   class ZubVerifyData : public VerifyData::Notifiee {
    public:
      explicit ZubVerifyData( QosAclSm* sm ) : sm_( sm ) {}
      void onVerify() override { sm_->handleVerify(); }

    private:
      QosAclSm* sm_;
   };

   // ---- construction ----
   QosAclSm( Zub::Ptr< NevCommonSmData const > const& ncsd,
             Zub::Ptr< Qos::CounterConfig const > const& cliCounterConfig,
             Zub::Ptr< Zub::Dir const > const& counterConfigDir,
             Zub::Ptr< Qos::Status const > const& qosStatus,
             Zub::Ptr< Qos::HwStatus const > const& qosHwStatus,
             Zub::Ptr< Zub::Dir const > const& qosSliceHwStatusDir,
             Zub::Ptr< Qos::AclHwStatus const > const& qosAclHwStatus,
             Zub::Ptr< Qos::AclSliceHwStatus > const& qosAclSliceHwStatus,
             Zub::Ptr< Interface::SubIntfStatusDir const > const& subIntfStatusDir,
             Zub::Ptr< Qos::Input::Config > const& pdpHwCfg,
             Zub::Ptr< HwEpoch::Status const > const& hwEpochStatus,
             Zub::Ptr< Acl::Config const > const& mainAclConfig,
             Zub::Ptr< NevHelper::QosAclHelper > const& qosHelper,
             Zub::Ptr< Kesh::TimerWheel > const& clock,
             Zub::Ptr< KernelCoPPStatus const > const& kernelCoppStatus,
             Zub::Ptr< KernelCoPPConfig const > const& kernelCoppConfig,
             Zub::Ptr< NexthopGroupStatus const > const& nexthopGroupStatus );
   ~QosAclSm() override;

   // ---- constructor parameters ----
   Zub::Ptr< Qos::CounterConfig const > const& cliCounterConfig() const {
      return cliCounterConfig_.get();
   }
   Zub::Ptr< Zub::Dir const > const& counterConfigDir() const { return counterConfigDir_.get(); }
   Zub::Ptr< Qos::Status const > const& qosStatus() const { return qosStatus_.get(); }
   Zub::Ptr< Qos::HwStatus const > const& qosHwStatus() const { return qosHwStatus_; }
   Zub::Ptr< Zub::Dir const > const& qosSliceHwStatusDir() const { return qosSliceHwStatusDir_; }
   Zub::Ptr< Qos::AclHwStatus const > const& qosAclHwStatus() const { return qosAclHwStatus_; }
   Zub::Ptr< Qos::AclSliceHwStatus > const& qosAclSliceHwStatus() const {
      return qosAclSliceHwStatus_;
   }
   Zub::Ptr< Interface::SubIntfStatusDir const > const& subIntfStatusDir() const {
      return subIntfStatusDir_.get();
   }
   Zub::Ptr< Qos::Input::Config > const& pdpHwCfg() const { return pdpHwCfg_; }
   Zub::Ptr< HwEpoch::Status const > const& hwEpochStatus() const { return hwEpochStatus_; }
   Zub::Ptr< Acl::Config const > const& mainAclConfig() const { return mainAclConfig_; }
   Zub::Ptr< NevHelper::QosAclHelper > const& qosHelper() const { return qosHelper_.get(); }
   Zub::Ptr< Kesh::TimerWheel > const& clock() const { return clock_; }
   Zub::Ptr< KernelCoPPStatus const > const& kernelCoppStatus() const { return kernelCoppStatus_; }
   Zub::Ptr< KernelCoPPConfig const > const& kernelCoppConfig() const { return kernelCoppConfig_; }
   Zub::Ptr< NexthopGroupStatus const > const& nexthopGroupStatus() const {
      return nexthopGroupStatus_.get();
   }

   // ---- further attributes ----
   ZUB_SM_FIELD( updatingCoppPmap, bool, false )
   bool pdpModeEnabled() const;
   ZUB_SM_FIELD( pdpDfltSPConfig, Zub::Ptr< Qos::ServicePolicyConfig >, nullptr )
   ZUB_SM_FIELD( verifyPolicy, bool, false )
   ZUB_SM_CHILDREN( pmapTypeSm, Qos::MapType, QosPolicyMapTypeSm )
   ZUB_SM_CHILDREN( aclTypeConfigSm, Acl::AclType, QosAclTypeConfigSm )
   ZUB_SM_CHILDREN( servicePolicySm, Qos::ServicePolicyKey, QosServicePolicySm )
   ZUB_SM_CHILDREN( counterUpdateSm, Zub::Name, QosCounterUpdateSm )
   // The update queue.
   Zub::LinkQueue< QosPolicyUpdateRequest > const& pendingPolicyUpdate() const {
      return pendingPolicyUpdate_;
   }
   static constexpr Zub::Seconds policyQueueReviewPeriod = 1.0;
   ZUB_SM_ACTION( enqueueRequest, EnqueueRequest, QosPolicyUpdateRequest, QosPolicyUpdateRequest() )
   ZUB_SM_FIELD( asyncRequest, QosPolicyUpdateRequest, QosPolicyUpdateRequest() )
   Zub::Ptr< VerifyData const > const& verifyData() const { return verifyData_.get(); }
   Zub::Ptr< NevCommonSmData const > const& reactNcsd() const { return reactNcsd_.get(); }
   // SVIs parked until the first interface arrives, with the service policy that asked.
   Zub::Collection< Qos::IntfPairKey, Zub::Ptr< QosServicePolicySm > > const& delayedSviIntfId()
         const {
      return delayedSviIntfId_;
   }
   void delayedSviIntfIdIs( Qos::IntfPairKey const& k, QosServicePolicySm* sm ) {
      delayedSviIntfId_.set( k, Zub::Ptr< QosServicePolicySm >( sm ) );
   }
   void delayedSviIntfIdDel( Qos::IntfPairKey const& k ) { delayedSviIntfId_.erase( k ); }
   void delayedSviIntfIdDelAll();

   // ---- start-up and input handlers ----
   void handleInitialized() override;
   virtual void handleConfigVersionUpdateTime();
   virtual void handleCliWaiting();
   virtual void handleNexthopGroupIndex( Zub::Name const& nexthopGroup );
   bool policyMapSupported( Qos::MapType type, Zub::Name const& pmapName ) const;
   // Whether the chip has any policy feature at all: without one the engine builds no machine
   // for a policy map type or a service policy.
   bool policiesServed() const;
   // Whether the engine builds machines for a map type, and for a service policy.
   bool mapTypeServed( Qos::MapType type ) const;
   bool policyMapServed( Qos::MapType type, Zub::Name const& pmapName ) const;
   void handleServicePolicy( Qos::ServicePolicyKey const& key );
   void handleServicePolicy();
   void handlePolicyMapType( Qos::MapType type );
   void handlePolicyMapType();
   void handleClearHwStatusErrorRequestTime();
   void handleRoutedPortSubIntfAclSharing();
   void handleNamedPolicer( Zub::Name const& name );
   void handleSubIntfStatus( Mirel::IntfId const& intfId );
   void handleIntfUpdate( Mirel::IntfId const& intfId );
   void createPMapSmForDelayedSviIntfIds();
   void updateIntfPdpDfltSp( Mirel::IntfId const& intfId, bool add );
   void handleIntfUpdateCallback( IntfUpdateCallbackData const& data );
   void reprogramAllPMaps();
   void schedulePolicyVerify();
   void kernelCoppSetInitialConfig();
   void handleCounterConfig();
   void handleCounterConfig( Zub::Name const& name );
   void handleCliPMapCounterUpdateRequest();
   void handleVerify();
   // Compares every policy map with the hardware, top down, when a change has armed it.
   void handlePolicyVerify();
   // Where the verification chain reports mismatches with the hardware; null without one.
   VerifyData* verifyReport() const;
   // Prints what is programmed for one map type to the descriptor `socket`; the caller names a
   // type that exists.
   void showAcls( std::uint32_t socket, std::uint32_t unit, bool detail, Qos::MapType mapType );

   // ---- update pipeline ----
   void handleEnqueueRequest();
   void schedulePolicyUpdate();
   void processTcamRequestQueue() override;
   void processPolicyUpdate();
   void handleAsyncOperationResult() override;
   void handlePendingOperationTimeout() override;
   void finishOperation( QosPolicyUpdateRequest const& request );
   static void restoreMatchSlot( QosPolicyUpdateRequest const& request );

   // ---- deferred compile of one class match ----
   bool updateClassData( Zub::Ptr< QosPolicyMapClassData > const& policyData );
   void createAclRules( Zub::Ptr< QosPolicyMapClassData > const& policyData );
   // The working copy of a VLAN or COS match in the class data, made fresh for each compile,
   // and the values of one rule written into it.
   void createClassDataL2ParamsValue( Zub::Ptr< Qos::ClassMapMatch const > const& cMatch,
                                      Zub::Ptr< QosClassData > const& classData );
   void populateClassDataL2ParamsValue( Zub::Ptr< QosClassData > const& classData,
                                        L2ParamsInfo const& l2ParamsInfo );
   AclCreateError createIpAclRule( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                   Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId,
                                   std::uint32_t ruleNum );
   AclCreateError createIp6AclRule( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                    Acl::Ip6RuleConfig const& rule, Acl::UniqueId const& aclId,
                                    std::uint32_t ruleNum );
   AclCreateError checkIpFragRule( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                   Acl::IpRuleConfig const& rule, Acl::UniqueId const& aclId,
                                   std::uint32_t ruleNum, std::uint32_t subRuleNum, bool l4Rule );
   // A rule with a VLAN match in a QoS map applied to a VLAN interface: left out. Serves both
   // compilers.
   bool unsupportedRulePresent( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                Acl::IpRuleConfig const& rule ) const;
   bool unsupportedRulePresent( Zub::Ptr< QosPolicyMapClassData > const& policyData,
                                Acl::Ip6RuleConfig const& rule ) const;

   // ---- hardware status ----
   bool updatePolicyMapErrorState( AclCreateError error, QosPolicyMapKey const& key,
                                   Zub::Ptr< AclData > const& aclData );
   void setPolicyMapHwPrgmStatus( QosPolicyMapKey const& key );

   void zubDoZombieReactors( bool zombie ) override;

 private:
   void stalePolicyMapHwStatusSweep( Qos::MapType type, char const* what );

   Zub::Input< Qos::CounterConfig const, ZubCliCounterConfig > cliCounterConfig_;
   Zub::Input< Zub::Dir const, ZubCounterConfigDir > counterConfigDir_;
   Zub::Input< Qos::Status const, ZubQosStatus > qosStatus_;
   Zub::Ptr< Qos::HwStatus const > qosHwStatus_;
   Zub::Ptr< Zub::Dir const > qosSliceHwStatusDir_;
   Zub::Ptr< Qos::AclHwStatus const > qosAclHwStatus_;
   Zub::Ptr< Qos::AclSliceHwStatus > qosAclSliceHwStatus_;
   Zub::Input< Interface::SubIntfStatusDir const, ZubSubIntfStatusDir > subIntfStatusDir_;
   Zub::Ptr< Qos::Input::Config > pdpHwCfg_;
   Zub::Ptr< HwEpoch::Status const > hwEpochStatus_;
   Zub::Ptr< Acl::Config const > mainAclConfig_;
   Zub::Input< NevHelper::QosAclHelper, ZubQosHelper > qosHelper_;
   Zub::Ptr< Kesh::TimerWheel > clock_;
   Zub::Ptr< KernelCoPPStatus const > kernelCoppStatus_;
   Zub::Ptr< KernelCoPPConfig const > kernelCoppConfig_;
   Zub::Input< NexthopGroupStatus const, ZubNexthopGroupStatus > nexthopGroupStatus_;
   Zub::LinkQueue< QosPolicyUpdateRequest > pendingPolicyUpdate_;
   Zub::WatchedCollection< Zub::Name, ZubNamedPolicerStatus > namedPolicerStatus_;
   Zub::Input< VerifyData const, ZubVerifyData > verifyData_;
   Zub::Input< NevCommonSmData const, ZubReactNcsd > reactNcsd_;
   Zub::Collection< Qos::IntfPairKey, Zub::Ptr< QosServicePolicySm > > delayedSviIntfId_;
   Zub::WatchedCollection< Mirel::IntfId, ZubSubIntfStatus > subIntfStatus_;
};

// The agent's entry point: creates the machine from the constructor parameters, with
// notification on. The agent then wires the chip's helper, and the machine starts on the next
// turn of the event loop.
template< class... Params >
Zub::Ptr< QosAclSm > QosAclSmIs( Params const&... params ) {
   auto sm = Zub::make< QosAclSm >( params... );
   sm->hasNotificationActiveIs( true );
   return sm;
}

}  // namespace Nev
