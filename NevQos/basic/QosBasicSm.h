// The top state machine of basic QoS: everything of QoS that no policy map decides. It programs
// the global COS, DSCP and EXP maps to and from traffic classes, the traffic-class-to-queue
// maps, the rewrite switches, global ECN, the named DSCP rewrite maps and COS-to-TC profiles,
// and through its children each interface (QosIntfSm), each transmit queue (QosIntfTxQueueSm)
// and the ECN counters of each interface (QosEcnIntfCounterConfigSm). Every programming step
// files its outcome in the slice's hardware status by feature (QosProgrammingStep.h).
#pragma once

#include <tuple>
#include <utility>

#include "NevQos/basic/QosEcnIntfCounterConfigSm.h"
#include "NevQos/basic/QosIntfSm.h"
#include "NevQos/basic/QosProgrammingStep.h"
#include "NevQos/helpers/QosBasicHelper.h"
#include "NevQos/platform/entities/CounterConfig.h"
#include "NevQos/platform/entities/EthPhyIntfStatus.h"
#include "NevQos/platform/entities/HwStatus.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/platform/entities/SliceHwStatus.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/platform/nev/NevBaseSm.h"
#include "NevQos/platform/nev/NevCommonSmData.h"
#include "NevQos/platform/nev/VerifyData.h"
#include "NevQos/platform/zub/Attribute.h"

namespace Nev {

class QosBasicSm : public NevBaseSm {
 public:
   // ---- reactors ----
   class ZubQosStatus : public Qos::Status::Notifiee {
    public:
      explicit ZubQosStatus( QosBasicSm* sm ) : sm_( sm ) {}
      void onCosToTcMap( Qos::Cos const& cos ) override { sm_->handleCosToTcMap( cos ); }
      void onCosToTcMapzubImmediate() override { sm_->handleCosToTcMap(); }
      void onDscpToTcMap( Qos::Dscp const& dscp ) override { sm_->handleDscpToTcMap( dscp ); }
      void onDscpToTcMapzubImmediate() override { sm_->handleDscpToTcMap(); }
      void onDscpToDpMap( Qos::Dscp const& dscp ) override { sm_->handleDscpToDpMap( dscp ); }
      void onDscpToDpMapzubImmediate() override { sm_->handleDscpToDpMap(); }
      void onExpToTcMap( Qos::Exp const& exp ) override { sm_->handleExpToTcMap( exp ); }
      void onExpToTcMapzubImmediate() override { sm_->handleExpToTcMap(); }
      void onTcToCosMap( Qos::TrafficClass const& tc ) override { sm_->handleTcToCosMap( tc ); }
      void onTcToCosMapzubImmediate() override { sm_->handleTcToCosMap(); }
      void onTcToDscpMap( Qos::TrafficClass const& tc ) override { sm_->handleTcToDscpMap( tc ); }
      void onTcToDscpMapzubImmediate() override { sm_->handleTcToDscpMap(); }
      void onTcToExpMap( Qos::TrafficClass const& tc ) override { sm_->handleTcToExpMap( tc ); }
      void onTcToExpMapzubImmediate() override { sm_->handleTcToExpMap(); }
      void onTcToTxQueueMap( Qos::TrafficClass const& tc ) override {
         sm_->handleTcToUcTxQueueMap( tc );
      }
      void onTcToTxQueueMapzubImmediate() override { sm_->handleTcToUcTxQueueMap(); }
      void onTcToMcTxQueueMap( Qos::TrafficClass const& tc ) override {
         sm_->handleTcToMcTxQueueMap( tc );
      }
      void onTcToMcTxQueueMapzubImmediate() override { sm_->handleTcToMcTxQueueMap(); }
      void onCosRewriteEnabled() override { sm_->handleCosRewriteEnabled(); }
      void onDscpRewriteEnabled() override { sm_->handleDscpRewriteEnabled(); }
      void onEcnDelayThreshold() override { sm_->handleEcnDelayThreshold(); }
      void onGlobalEcnStatus() override { sm_->handleGlobalEcnStatus(); }
      void onConfigVersionUpdateTime() override { sm_->handleConfigVersionUpdateTime(); }
      void onClearHwStatusErrorRequestTime() override {
         sm_->handleClearHwStatusErrorRequestTime();
      }
      void onIntfStatus( Mirel::IntfId const& intfId ) override {
         sm_->handleQosIntfStatus( intfId );
      }
      void onServicePolicyDP1Status( Qos::ServicePolicyKey const& ) override {
         sm_->handleServicePolicyDP1Status();
      }
      void onDscpRewriteMap( Zub::Name const& mapName ) override;
      void onCosToTcProfile( Zub::Name const& profileName ) override;

    private:
      QosBasicSm* sm_;
   };
   // The helper's own attributes call for nothing here; the reactor keeps the helper watched
   // like every input.
   class ZubQosHelper : public NevHelper::QosBasicHelper::Notifiee {
    public:
      explicit ZubQosHelper( QosBasicSm* sm ) : sm_( sm ) {}
      QosBasicSm* sm() const { return sm_; }

    private:
      QosBasicSm* sm_;
   };
   class ZubEthPhyIntfStatusDir : public Interface::AllEthPhyIntfStatusDir::Notifiee {
    public:
      explicit ZubEthPhyIntfStatusDir( QosBasicSm* sm ) : sm_( sm ) {}
      void onIntfStatus( Mirel::IntfId const& intfId ) override;

    private:
      QosBasicSm* sm_;
   };
   class ZubQosCounterConfig : public Qos::CounterConfig::Notifiee {
    public:
      explicit ZubQosCounterConfig( QosBasicSm* sm ) : sm_( sm ) {}
      void onEcnIntfCounterConfig( Mirel::IntfId const& intfId ) override {
         sm_->handleEcnIntfCounterConfig( intfId );
      }

    private:
      QosBasicSm* sm_;
   };
   // Nothing here arms the wheel; the machine holds it for the chip's driver.
   class ZubClock : public Kesh::TimerWheel::NotifieeConst {
    public:
      explicit ZubClock( QosBasicSm* sm ) : sm_( sm ) {}
      QosBasicSm* sm() const { return sm_; }

    private:
      QosBasicSm* sm_;
   };
   // One front-panel port's status: tells the driver when the port becomes active or not.
   class ZubStatus : public Interface::EthPhyIntfStatus::Notifiee {
    public:
      ZubStatus( QosBasicSm* sm, Mirel::IntfId const& intfId ) : sm_( sm ), intfId_( intfId ) {}
      Mirel::IntfId const& intfId() const { return intfId_; }
      Zub::Ptr< Interface::EthPhyIntfStatus const > status() const { return notifier(); }
      void onActive() override { handleEthPhyIntfStatusActive( intfId_ ); }

      void handleEthPhyIntfStatusActive( Mirel::IntfId const& intfId );
      // Called by the platform's DLP flow, which decides when a port of a slice comes up: an
      // active port has its whole interface programmed again.
      void handleEthPhyIntfStatusActiveDlp( Mirel::IntfId const& intfId, bool active );

    private:
      QosBasicSm* sm_;
      Mirel::IntfId intfId_;
   };
   class ZubDscpRewriteMap : public Qos::DscpRewriteMap::Notifiee {
    public:
      ZubDscpRewriteMap( QosBasicSm* sm, Zub::Name const& mapName )
          : sm_( sm ), mapName_( mapName ) {}
      Zub::Name const& mapName() const { return mapName_; }
      void onTcToDscpMap( Qos::TrafficClass const& tc ) override {
         sm_->handleDscpRewriteMapChange( mapName_, tc );
      }

    private:
      QosBasicSm* sm_;
      Zub::Name mapName_;
   };
   class ZubCosToTcProfile : public Qos::CosToTcProfile::Notifiee {
    public:
      ZubCosToTcProfile( QosBasicSm* sm, Zub::Name const& profileName )
          : sm_( sm ), profileName_( profileName ) {}
      Zub::Name const& profileName() const { return profileName_; }
      void onCosToTcMap( Qos::Cos const& cos ) override {
         sm_->handleCosToTcProfileMappingChange( profileName_, cos );
      }

    private:
      QosBasicSm* sm_;
      Zub::Name profileName_;
   };
   class ZubVerifyData : public VerifyData::Notifiee {
    public:
      explicit ZubVerifyData( QosBasicSm* sm ) : sm_( sm ) {}
      void onVerify() override { sm_->handleVerify(); }

    private:
      QosBasicSm* sm_;
   };

   // ---- construction ----
   QosBasicSm( Zub::Ptr< NevCommonSmData const > const& ncsd,
               Zub::Ptr< Qos::Status const > const& qosStatus,
               Zub::Ptr< Qos::HwStatus const > const& qosHwStatus,
               Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus,
               Zub::Ptr< NevHelper::QosBasicHelper > const& qosHelper,
               Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > const& ethPhyIntfStatusDir,
               Zub::Ptr< Qos::CounterConfig const > const& qosCounterConfig,
               Zub::Ptr< Kesh::TimerWheel > const& clock );
   ~QosBasicSm() override;

   // ---- inputs ----
   Zub::Ptr< Qos::Status const > const& qosStatus() const { return qosStatus_.get(); }
   Zub::Ptr< Qos::HwStatus const > const& qosHwStatus() const { return qosHwStatus_; }
   Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus() const { return qosSliceHwStatus_; }
   Zub::Ptr< NevHelper::QosBasicHelper > const& qosHelper() const { return qosHelper_.get(); }
   Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > const& ethPhyIntfStatusDir() const {
      return ethPhyIntfStatusDir_.get();
   }
   Zub::Ptr< Qos::CounterConfig const > const& qosCounterConfig() const {
      return qosCounterConfig_.get();
   }
   Zub::Ptr< Kesh::TimerWheel > const& clock() const { return clock_.get(); }
   Zub::Ptr< VerifyData const > const& verifyData() const { return verifyData_.get(); }

   // ---- further attributes ----
   // Written by the policy side while it reprograms the control-plane map; not read here.
   ZUB_SM_FIELD( updatingCoppPmap, bool, false )
   // A verification is owed.
   ZUB_SM_FIELD( verifyQos, bool, false )
   ZUB_SM_CHILDREN( qosIntfSm, Mirel::IntfId, QosIntfSm )
   ZUB_SM_CHILDREN( ecnIntfCounterConfigSm, Mirel::IntfId, QosEcnIntfCounterConfigSm )

   // Watched collections: one reactor per front-panel port, DSCP rewrite map and COS-to-TC
   // profile. A null member is refused.
   Zub::Ptr< ZubStatus > status( Mirel::IntfId const& intfId ) const {
      return status_.get( intfId );
   }
   std::size_t statusSize() const { return status_.size(); }
   void statusIs( Zub::Ptr< Interface::EthPhyIntfStatus const > const& status );
   void statusDel( Mirel::IntfId const& intfId ) { status_.del( intfId ); }
   void statusDelAll() { status_.delAll(); }
   Zub::Ptr< ZubDscpRewriteMap > dscpRewriteMap( Zub::Name const& mapName ) const {
      return dscpRewriteMap_.get( mapName );
   }
   void dscpRewriteMapIs( Zub::Ptr< Qos::DscpRewriteMap const > const& map );
   void dscpRewriteMapDel( Zub::Name const& mapName ) { dscpRewriteMap_.del( mapName ); }
   Zub::Ptr< ZubCosToTcProfile > cosToTcProfile( Zub::Name const& profileName ) const {
      return cosToTcProfile_.get( profileName );
   }
   void cosToTcProfileIs( Zub::Ptr< Qos::CosToTcProfile const > const& profile );
   void cosToTcProfileDel( Zub::Name const& profileName ) { cosToTcProfile_.del( profileName ); }

   // ---- start-up ----
   void handleInitialized() override;
   void handleInitializedComplete();

   // ---- global maps ----
   // The keyless forms only trace: they are the targets of immediate reactors, which carry no
   // key. The keyed forms program.
   void handleCosToTcMap( Qos::Cos cos );
   void handleCosToTcMap();
   void handleDscpToTcMap( Qos::Dscp dscp );
   void handleDscpToTcMap();
   void handleDscpToDpMap( Qos::Dscp dscp );
   void handleDscpToDpMap();
   void handleExpToTcMap( Qos::Exp exp );
   void handleExpToTcMap();
   void handleTcToCosMap( Qos::TrafficClass tc );
   void handleTcToCosMap();
   void handleTcToDscpMap( Qos::TrafficClass tc );
   void handleTcToDscpMap();
   void handleTcToExpMap( Qos::TrafficClass tc );
   void handleTcToExpMap();
   void handleTcToUcTxQueueMap( Qos::TrafficClass tc );
   void handleTcToUcTxQueueMap();
   void handleTcToMcTxQueueMap( Qos::TrafficClass tc );
   void handleTcToMcTxQueueMap();
   void handleCosRewriteEnabled();
   void handleDscpRewriteEnabled();
   void handleEcnDelayThreshold();
   void handleGlobalEcnStatus();
   void handleServicePolicyDP1Status();

   // ---- interfaces, ECN counters ----
   void handleQosIntfStatus( Mirel::IntfId const& intfId );
   void handleEcnIntfCounterConfig( Mirel::IntfId const& intfId );
   void handleEcnIntfCounterConfig();

   // ---- named DSCP rewrite maps and COS-to-TC profiles ----
   void handleDscpRewriteMap( Zub::Name const& mapName );
   void handleDscpRewriteMap();
   void handleDscpRewriteMapChange( Zub::Name const& mapName, Qos::TrafficClass tc );
   void handleCosToTcProfile( Zub::Name const& profileName );
   void handleCosToTcProfileMappingChange( Zub::Name const& profileName, Qos::Cos cos );
   void restoreCosToTcProfile();

   // ---- status ----
   void handleConfigVersionUpdateTime();
   void handleClearHwStatusErrorRequestTime();
   // The programming step of `feature` around `driverCall` (QosProgrammingStep.h), ending
   // with a request for verification. Serves this machine, its interfaces and their queues.
   template< class DriverCall >
   void programFeature( Qos::FeatureName feature, char const* errorText, DriverCall&& driverCall ) {
      runProgrammingStep( *qosHelper()->qosSliceHwStatus(), *qosHelper()->qosStatus(), feature,
                          errorText, std::forward< DriverCall >( driverCall ) );
      scheduleQosVerify();
   }

   // ---- verification ----
   void handleVerify();
   void handleQosVerify();
   // Called after every change, by this machine and by all its children.
   void scheduleQosVerify();

   void doPrepareToDie();
   void zubDoZombieReactors( bool zombie ) override;

 private:
   // The watched collections follow their sources.
   void followEthPhyIntfStatus( Mirel::IntfId const& intfId );
   void followDscpRewriteMap( Zub::Name const& mapName );
   void followCosToTcProfile( Zub::Name const& profileName );
   // Whether a fabric slice leaves the interface alone: it programs its fabric interface only.
   bool skippedOnFabricSlice( Mirel::IntfId const& intfId ) const;

   Zub::Input< Qos::Status const, ZubQosStatus > qosStatus_;
   Zub::Ptr< Qos::HwStatus const > qosHwStatus_;
   Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus_;
   Zub::Input< NevHelper::QosBasicHelper, ZubQosHelper > qosHelper_;
   Zub::Input< Interface::AllEthPhyIntfStatusDir const, ZubEthPhyIntfStatusDir >
         ethPhyIntfStatusDir_;
   Zub::Input< Qos::CounterConfig const, ZubQosCounterConfig > qosCounterConfig_;
   Zub::Input< Kesh::TimerWheel, ZubClock > clock_;
   Zub::WatchedCollection< Mirel::IntfId, ZubStatus > status_;
   Zub::WatchedCollection< Zub::Name, ZubDscpRewriteMap > dscpRewriteMap_;
   Zub::WatchedCollection< Zub::Name, ZubCosToTcProfile > cosToTcProfile_;
   Zub::Input< VerifyData const, ZubVerifyData > verifyData_;
};

// Creates the machine with notification on. The agent then finishes wiring it, and the machine
// starts on the next turn of the event loop.
Zub::Ptr< QosBasicSm > QosBasicSmIs(
      Zub::Ptr< NevCommonSmData const > const& ncsd, Zub::Ptr< Qos::Status const > const& qosStatus,
      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus,
      Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus,
      Zub::Ptr< NevHelper::QosBasicHelper > const& qosHelper,
      Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > const& ethPhyIntfStatusDir,
      Zub::Ptr< Qos::CounterConfig const > const& qosCounterConfig,
      Zub::Ptr< Kesh::TimerWheel > const& clock );

// The agent's entry point for basic QoS, with the parameters of the constructor.
Zub::Ptr< QosBasicSm > qosBasicSmFactory(
      Zub::Ptr< NevCommonSmData const > const& ncsd, Zub::Ptr< Qos::Status const > const& qosStatus,
      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus,
      Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus,
      Zub::Ptr< NevHelper::QosBasicHelper > const& qosHelper,
      Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > const& ethPhyIntfStatusDir,
      Zub::Ptr< Qos::CounterConfig const > const& qosCounterConfig,
      Zub::Ptr< Kesh::TimerWheel > const& clock );

}  // namespace Nev
