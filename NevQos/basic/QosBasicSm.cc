#include "NevQos/basic/QosBasicSm.h"

#include <cstdint>

#include "NevQos/log/TraceHandles.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/zub/Assert.h"
#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Fleelog.h"

namespace Nev {

// ---- reactors ----

void QosBasicSm::ZubQosStatus::onDscpRewriteMap( Zub::Name const& mapName ) {
   sm_->handleDscpRewriteMap( mapName );
   sm_->followDscpRewriteMap( mapName );
}

void QosBasicSm::ZubQosStatus::onCosToTcProfile( Zub::Name const& profileName ) {
   sm_->handleCosToTcProfile( profileName );
   sm_->followCosToTcProfile( profileName );
}

void QosBasicSm::ZubEthPhyIntfStatusDir::onIntfStatus( Mirel::IntfId const& intfId ) {
   sm_->followEthPhyIntfStatus( intfId );
}

void QosBasicSm::ZubStatus::handleEthPhyIntfStatusActive( Mirel::IntfId const& intfId ) {
   ZUB_TRACE( nevQosTrace, 3, "handleEthPhyIntfStatusActive " << intfId );
   // Under DLP the platform's flow tells the driver itself, through the path below.
   if( sm_->ncsd()->dlpEnabled() ) return;
   sm_->qosHelper()->handleEthPhyIntfStatusActive( intfId );
}

void QosBasicSm::ZubStatus::handleEthPhyIntfStatusActiveDlp( Mirel::IntfId const& intfId,
                                                             bool active ) {
   ZUB_TRACE( nevQosTrace, 3,
              "handleEthPhyIntfStatusActiveDlp"
                    << ", intf " << intfId << ", active " << active );
   if( active ) {
      Zub::Ptr< QosIntfSm > const intfSm = sm_->qosIntfSm( intfId );
      ZUB_TRACE( nevQosTrace, 3, ", intfSmExists " << bool( intfSm ) );
      sm_->qosHelper()->handleEthPhyIntfStatusActive( intfId );
      // The port's hardware was not programmed while it was inactive.
      if( intfSm ) intfSm->handleInitialized( true );
   } else {
      sm_->qosHelper()->handleEthPhyIntfStatusActive( intfId );
   }
   sm_->scheduleQosVerify();
}

// ---- construction ----

QosBasicSm::QosBasicSm(
      Zub::Ptr< NevCommonSmData const > const& ncsd, Zub::Ptr< Qos::Status const > const& qosStatus,
      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus,
      Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus,
      Zub::Ptr< NevHelper::QosBasicHelper > const& qosHelper,
      Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > const& ethPhyIntfStatusDir,
      Zub::Ptr< Qos::CounterConfig const > const& qosCounterConfig,
      Zub::Ptr< Kesh::TimerWheel > const& clock )
    : NevBaseSm( ncsd ), qosHwStatus_( qosHwStatus ), qosSliceHwStatus_( qosSliceHwStatus ) {
   // Reactors attach without catch-up: handleInitialized() walks the inputs in its own order.
   constexpr bool catchUp = false;
   qosStatus_.is( qosStatus, this, catchUp );
   qosHelper_.is( qosHelper, this, catchUp );
   ethPhyIntfStatusDir_.is( ethPhyIntfStatusDir, this, catchUp );
   qosCounterConfig_.is( qosCounterConfig, this, catchUp );
   clock_.is( clock, this, catchUp );
   if( ethPhyIntfStatusDir ) {
      for( auto it = ethPhyIntfStatusDir->intfStatus().iter(); it; ++it )
         statusIs( it.value() );
   }
   if( qosStatus ) {
      for( auto it = qosStatus->dscpRewriteMap().iter(); it; ++it )
         dscpRewriteMapIs( it.value() );
      for( auto it = qosStatus->cosToTcProfile().iter(); it; ++it )
         cosToTcProfileIs( it.value() );
   }
   if( ncsd ) verifyData_.is( ncsd->verifyData(), this, catchUp );
}

QosBasicSm::~QosBasicSm() = default;

// ---- watched collections ----

void QosBasicSm::statusIs( Zub::Ptr< Interface::EthPhyIntfStatus const > const& status ) {
   if( !status ) Zub::throwNullParameterException( "status", "Nev::QosBasicSm::status" );
   Mirel::IntfId const intfId = status->key();
   Zub::Ptr< ZubStatus > reactor = status_.get( intfId );
   if( !reactor ) {
      reactor = Zub::make< ZubStatus >( this, intfId );
      status_.is( intfId, reactor );
   }
   // A port that appears on a running machine is reported to the driver at once, as a change
   // of its state would be.
   if( initialized() ) {
      reactor->notifierIs( status );
   } else {
      reactor->notifierIsWithoutCatchUp( status );
   }
}

void QosBasicSm::dscpRewriteMapIs( Zub::Ptr< Qos::DscpRewriteMap const > const& map ) {
   if( !map ) {
      Zub::throwNullParameterException( "dscpRewriteMap", "Nev::QosBasicSm::dscpRewriteMap" );
   }
   Zub::Ptr< ZubDscpRewriteMap > reactor = dscpRewriteMap_.get( map->key() );
   if( !reactor ) {
      reactor = Zub::make< ZubDscpRewriteMap >( this, map->key() );
      dscpRewriteMap_.is( map->key(), reactor );
   }
   // No catch-up: programming a map programs all of its entries.
   reactor->notifierIsWithoutCatchUp( map );
}

void QosBasicSm::cosToTcProfileIs( Zub::Ptr< Qos::CosToTcProfile const > const& profile ) {
   if( !profile ) {
      Zub::throwNullParameterException( "cosToTcProfile", "Nev::QosBasicSm::cosToTcProfile" );
   }
   Zub::Ptr< ZubCosToTcProfile > reactor = cosToTcProfile_.get( profile->key() );
   if( !reactor ) {
      reactor = Zub::make< ZubCosToTcProfile >( this, profile->key() );
      cosToTcProfile_.is( profile->key(), reactor );
   }
   // No catch-up: adding a profile programs all of its entries.
   reactor->notifierIsWithoutCatchUp( profile );
}

void QosBasicSm::followEthPhyIntfStatus( Mirel::IntfId const& intfId ) {
   if( auto status = ethPhyIntfStatusDir()->intfStatus( intfId ) ) {
      statusIs( status );
   } else {
      statusDel( intfId );
   }
}

void QosBasicSm::followDscpRewriteMap( Zub::Name const& mapName ) {
   if( auto map = qosStatus()->dscpRewriteMap( mapName ) ) {
      dscpRewriteMapIs( map );
   } else {
      dscpRewriteMapDel( mapName );
   }
}

void QosBasicSm::followCosToTcProfile( Zub::Name const& profileName ) {
   if( auto profile = qosStatus()->cosToTcProfile( profileName ) ) {
      cosToTcProfileIs( profile );
   } else {
      cosToTcProfileDel( profileName );
   }
}

// ---- start-up ----

void QosBasicSm::handleInitialized() {
   ZUB_TRACE( nevQosTrace, 2,
              "QosBasicSm::"
                    << "handleInitialized" );
   ZUB_ASSERT( qosHelper() );
   qosHelper()->hwInit();
   ZUB_ASSERT( clock() );
   // A clear asked for while the agent was down concerns what went before this start-up: it is
   // served first, and what fails from here on lowers the status again.
   if( qosStatus()->clearHwStatusErrorRequestTime() >
       qosSliceHwStatus()->clearHwStatusErrorTime() ) {
      handleClearHwStatusErrorRequestTime();
   }
   Qos::HwStatus const& hw = *qosHwStatus();
   for( Qos::Cos cos( 0 ); cos.isValid(); cos = Qos::Cos( cos + 1 ) )
      handleCosToTcMap( cos );
   for( Qos::Dscp dscp( 0 ); dscp.isValid(); dscp = Qos::Dscp( dscp + 1 ) ) {
      handleDscpToTcMap( dscp );
      handleDscpToDpMap( dscp );
   }
   for( Qos::Exp exp( 0 ); exp.isValid(); exp = Qos::Exp( exp + 1 ) )
      handleExpToTcMap( exp );
   // The counter is a traffic class itself: a chip claiming more classes than one can name
   // stops here with the range error.
   for( Qos::TrafficClass tc( 0 ); std::uint32_t( tc.value() ) < hw.numTcSupported();
        tc = Qos::TrafficClass( tc + 1 ) ) {
      handleTcToCosMap( tc );
      handleTcToDscpMap( tc );
      handleTcToExpMap( tc );
      handleTcToUcTxQueueMap( tc );
      if( hw.numMulticastQueueSupported() != 0 ) handleTcToMcTxQueueMap( tc );
   }
   handleCosRewriteEnabled();
   if( hw.dscpRewriteSupported() ) handleDscpRewriteEnabled();
   if( hw.ecnSupported() ) handleGlobalEcnStatus();
   if( hw.ecnQueueCounterSupported() ) handleEcnIntfCounterConfig();
   if( hw.dscpRewritePerInterfaceSupported() ) handleDscpRewriteMap();
   if( hw.cosToTcPerInterfaceSupported() ) restoreCosToTcProfile();
   for( auto it = qosStatus()->intfStatus().iter(); it; ++it ) {
      ZUB_TRACE( nevQosTrace, 2, "( IntfStatusSm:" << it.key() );
      handleQosIntfStatus( it.key() );
   }
   handleConfigVersionUpdateTime();
   handleInitializedComplete();
   // The verifications asked for above were dropped while the machine was not initialized.
   scheduleQosVerify();
}

void QosBasicSm::handleInitializedComplete() {
   ZUB_TRACE( nevQosTrace, 2, "handleInitializedComplete" );
   qosHelper()->initializationComplete();
   initializedIs( true );
}

// ---- global maps ----

void QosBasicSm::handleCosToTcMap( Qos::Cos cos ) {
   ZUB_TRACE( nevQosTrace, 2, "handleCosToTcMap " << cos );
   programFeature( Qos::featureGlobalMaps_, nullptr,
                   [ & ] { qosHelper()->programCosToTcMap( cos ); } );
}

void QosBasicSm::handleCosToTcMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleCosToTcMap" );
}

void QosBasicSm::handleDscpToTcMap( Qos::Dscp dscp ) {
   ZUB_TRACE( nevQosTrace, 2, "handleDscpToTcMap " << dscp );
   programFeature( Qos::featureGlobalMaps_, nullptr,
                   [ & ] { qosHelper()->programDscpToTcMap( dscp ); } );
}

void QosBasicSm::handleDscpToTcMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleDscpToTcMap" );
}

void QosBasicSm::handleDscpToDpMap( Qos::Dscp dscp ) {
   ZUB_TRACE( nevQosTrace, 2, "handleDscpToDpMap " << dscp );
   // Unlike the other maps, a change is refused as well on a chip without the map.
   if( !qosHwStatus()->dscpToDpMapSupported() ) return;
   programFeature( Qos::featureGlobalMaps_, nullptr,
                   [ & ] { qosHelper()->programDscpToDpMap( dscp ); } );
}

void QosBasicSm::handleDscpToDpMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleDscpToDpMap" );
}

void QosBasicSm::handleExpToTcMap( Qos::Exp exp ) {
   ZUB_TRACE( nevQosTrace, 2, "handleExpToTcMap " << exp );
   programFeature( Qos::featureGlobalMaps_, nullptr,
                   [ & ] { qosHelper()->programExpToTcMap( exp ); } );
}

void QosBasicSm::handleExpToTcMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleExpToTcMap" );
}

void QosBasicSm::handleTcToCosMap( Qos::TrafficClass tc ) {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToCosMap " << tc );
   programFeature( Qos::featureGlobalMaps_, nullptr,
                   [ & ] { qosHelper()->programTcToCosMap( tc ); } );
}

void QosBasicSm::handleTcToCosMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToCosMap" );
}

void QosBasicSm::handleTcToDscpMap( Qos::TrafficClass tc ) {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToDscpMap " << tc );
   programFeature( Qos::featureGlobalMaps_, nullptr,
                   [ & ] { qosHelper()->programTcToDscpMap( tc ); } );
}

void QosBasicSm::handleTcToDscpMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToDscpMap" );
}

void QosBasicSm::handleTcToExpMap( Qos::TrafficClass tc ) {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToExpMap " << tc );
   programFeature( Qos::featureGlobalMaps_, nullptr,
                   [ & ] { qosHelper()->programTcToExpMap( tc ); } );
}

void QosBasicSm::handleTcToExpMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToExpMap" );
}

// The queue maps have no feature of their own in the slice's status.
void QosBasicSm::handleTcToUcTxQueueMap( Qos::TrafficClass tc ) {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToUcTxQueueMap " << tc );
   qosHelper()->programTcToUcTxQueueMap( tc );
   scheduleQosVerify();
}

void QosBasicSm::handleTcToUcTxQueueMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToUcTxQueueMap" );
}

void QosBasicSm::handleTcToMcTxQueueMap( Qos::TrafficClass tc ) {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToMcTxQueueMap " << tc );
   qosHelper()->programTcToMcTxQueueMap( tc );
   scheduleQosVerify();
}

void QosBasicSm::handleTcToMcTxQueueMap() {
   ZUB_TRACE( nevQosTrace, 2, "handleTcToMcTxQueueMap" );
}

void QosBasicSm::handleCosRewriteEnabled() {
   ZUB_TRACE( nevQosTrace, 2, "handleCosRewriteEnabled" );
   programFeature( Qos::featureCosRewriteEnable_, "Out of TCAM entries",
                   [ & ] { qosHelper()->programCosRewriteEnabled(); } );
}

void QosBasicSm::handleDscpRewriteEnabled() {
   ZUB_TRACE( nevQosTrace, 2, "handleDscpRewriteEnabled" );
   programFeature( Qos::featureDscpRewriteEnable_, "Out of TCAM entries",
                   [ & ] { qosHelper()->programDscpRewriteEnabled(); } );
}

// The threshold itself is programmed per queue, when a queue's delayEcnEnabled is written;
// here the feature's record is only marked good.
void QosBasicSm::handleEcnDelayThreshold() {
   ZUB_TRACE( nevQosTrace, 2, "handleEcnDelayThreshold" );
   qosHelper()
         ->qosSliceHwStatus()
         ->hwProgrammingVersionAndStatusIs( Qos::featureEcnDelayThreshold_ )
         ->hwProgrammingStatusIs( Qos::hwProgrammingSucceeded_ );
}

void QosBasicSm::handleGlobalEcnStatus() {
   ZUB_TRACE( nevQosTrace, 2, "handleGlobalEcnStatus" );
   programFeature( Qos::featureEcnStatus_, "ECN profiles exhausted",
                   [ & ] { qosHelper()->programGlobalEcn(); } );
}

void QosBasicSm::handleServicePolicyDP1Status() {
   ZUB_TRACE( nevQosTrace, 2, "handleServicePolicyDP1Status" );
   qosHelper()->handleServicePolicyDP1Status();
}

// ---- interfaces, ECN counters ----

bool QosBasicSm::skippedOnFabricSlice( Mirel::IntfId const& intfId ) const {
   return ncsd()->isFabricSlice() && intfId != Mirel::fabricIntfId();
}

void QosBasicSm::handleQosIntfStatus( Mirel::IntfId const& intfId ) {
   ZUB_TRACE( nevQosTrace, 2,
              "handleQosIntfStatus " << intfId << " isFabricSlice:" << ncsd()->isFabricSlice() );
   if( skippedOnFabricSlice( intfId ) ) {
      ZUB_TRACE( nevQosTrace, 2, " intfId:" << intfId << " is not a valid intf for fabric slice" );
      return;
   }
   Zub::Ptr< Qos::IntfStatus const > const intfStatus = qosStatus()->intfStatus( intfId );
   if( !intfStatus ) {
      if( auto sm = qosIntfSm( intfId ) ) sm->doPrepareToDie();
      qosIntfSmDel( intfId );
      return;
   }
   // Only a chip with guaranteed bandwidth needs the link speed, and a fabric interface has
   // none of its own.
   Zub::Ptr< Interface::EthPhyIntfStatus const > ethPhyIntfStatus;
   if( qosHwStatus()->guaranteedBwSupported() && !Mirel::isFabricInterface( intfId ) ) {
      ZUB_ASSERT( ethPhyIntfStatusDir() );
      ethPhyIntfStatus = ethPhyIntfStatusDir()->intfStatus( intfId );
   }
   qosIntfSmIs( intfId, this, intfStatus, ethPhyIntfStatus );
}

void QosBasicSm::handleEcnIntfCounterConfig( Mirel::IntfId const& intfId ) {
   ZUB_TRACE( nevQosTrace, 3, "handleEcnIntfCounterConfig " << intfId );
   FLEELOG( "QosSm::", __PRETTY_FUNCTION__, " intfId:", intfId );
   Zub::Ptr< Qos::EcnIntfCounterConfig const > const config =
         qosCounterConfig() ? qosCounterConfig()->ecnIntfCounterConfig( intfId ) : nullptr;
   if( config ) {
      if( ecnIntfCounterConfigSmHas( intfId ) ) return;
      // Null when the port is not on this slice.
      Zub::Ptr< Interface::EthPhyIntfStatus const > ethPhyIntfStatus;
      if( ethPhyIntfStatusDir() ) ethPhyIntfStatus = ethPhyIntfStatusDir()->intfStatus( intfId );
      ecnIntfCounterConfigSmIs( intfId, this, qosHelper()->qosSliceHwStatus(), config,
                                ethPhyIntfStatus );
      return;
   }
   if( auto sm = ecnIntfCounterConfigSm( intfId ) ) {
      sm->doPrepareToDie();
      ecnIntfCounterConfigSmDel( intfId );
   }
}

void QosBasicSm::handleEcnIntfCounterConfig() {
   if( !qosCounterConfig() ) return;
   for( auto it = qosCounterConfig()->ecnIntfCounterConfig().iter(); it; ++it )
      handleEcnIntfCounterConfig( it.key() );
}

// ---- named DSCP rewrite maps and COS-to-TC profiles ----

void QosBasicSm::handleDscpRewriteMap( Zub::Name const& mapName ) {
   ZUB_TRACE( nevQosTrace, 2, "handleDscpRewriteMap MapName " << mapName );
   if( qosStatus()->dscpRewriteMapHas( mapName ) ) {
      qosHelper()->programDscpMap( mapName );
   } else {
      qosHelper()->deleteDscpMap( mapName );
   }
}

void QosBasicSm::handleDscpRewriteMap() {
   for( auto it = qosStatus()->dscpRewriteMap().iter(); it; ++it )
      handleDscpRewriteMap( it.key() );
}

void QosBasicSm::handleDscpRewriteMapChange( Zub::Name const& mapName, Qos::TrafficClass tc ) {
   ZUB_TRACE( nevQosTrace, 3, "handleDscpRewriteMapChange " << mapName << " tc " << tc );
   qosHelper()->updateTcToDscpMapping( mapName, tc );
}

void QosBasicSm::handleCosToTcProfile( Zub::Name const& profileName ) {
   PAIRLOG( nevQosTrace, 2, "QosSm::", "handleCosToTcProfile", " profileName:", profileName );
   if( qosStatus()->cosToTcProfileHas( profileName ) ) {
      qosHelper()->addCosToTcProfile( profileName );
   } else {
      qosHelper()->removeCosToTcProfile( profileName );
   }
}

void QosBasicSm::handleCosToTcProfileMappingChange( Zub::Name const& profileName, Qos::Cos cos ) {
   PAIRLOG( nevQosTrace, 3, "QosSm::", "handleCosToTcProfileMappingChange",
            " profileName:", profileName, " cos:", cos );
   qosHelper()->updateCosToTcProfileMapping( profileName, cos );
}

// After a restart the chip is told again of every profile that the slice had programmed on
// an interface; the configuration may not have caught up yet.
void QosBasicSm::restoreCosToTcProfile() {
   PAIRLOG( nevQosTrace, 2, "QosSm::", "restoreCosToTcProfile" );
   for( auto it = qosSliceHwStatus()->intfToCosToTcProfile().iter(); it; ++it )
      qosHelper()->handleIntfToCosToTcProfile( it.key(), true );
}

// ---- status ----

void QosBasicSm::handleConfigVersionUpdateTime() {
   Zub::Seconds const version = qosHelper()->qosStatus()->configVersionUpdateTime();
   qosSliceHwStatus()->configVersionUpdateTimeIs( version );
   ZUB_TRACE( nevQosTrace, 2, " Config Version:" << version << " applied." );
   FLEELOG( "QosSm::", version, " applied." );
   scheduleQosVerify();
}

// Raises the slice-wide status only; each feature's record keeps its status and text.
void QosBasicSm::handleClearHwStatusErrorRequestTime() {
   Zub::Seconds const requestTime = qosStatus()->clearHwStatusErrorRequestTime();
   ZUB_TRACE( nevQosTrace, 8, "handleClearHwStatusErrorRequestTime " << requestTime );
   FLEELOG( "QosSm::", __PRETTY_FUNCTION__, " time:", requestTime );
   qosSliceHwStatus()->statusIs( Qos::hwProgrammingSucceeded_ );
   qosSliceHwStatus()->clearHwStatusErrorTimeIs( requestTime );
}

// ---- verification ----

void QosBasicSm::scheduleQosVerify() {
   if( !initialized() ) return;
   verifyQosIs( true );
   if( auto verify = ncsd() ? ncsd()->verifyData() : nullptr ) {
      if( verify->verifyRequired() ) verify->doRequestVerify();
   }
}

void QosBasicSm::handleVerify() {
   ZUB_TRACE( nevQosTrace, 3, "handleVerify" );
   if( initialized() ) handleQosVerify();
}

void QosBasicSm::handleQosVerify() {
   ZUB_TRACE( nevQosTrace, 3,
              "handleQosVerify"
                    << " verifyQos:" << verifyQos() );
   if( !verifyQos() ) return;
   for( auto i = qosStatus()->intfStatus().iter(); i; ++i ) {
      // A fabric slice has machines for its fabric interface alone.
      if( skippedOnFabricSlice( i.key() ) ) continue;
      ZUB_ASSERT_TEXT( qosIntfSm( i.key() ), "qosIntfSm( i->intfId() )" );
   }
   qosHelper()->handleQosVerify();
   verifyQosIs( false );
}

// The hardware keeps the ECN counters: the next start-up finds their configuration again.
void QosBasicSm::doPrepareToDie() {
   ZUB_TRACE( nevQosTrace, 2, "QosBasicSm::doPrepareToDie" );
   for( auto it = qosIntfSm().iter(); it; ++it ) {
      it.value()->doPrepareToDie();
      qosIntfSmDel( it.key() );
   }
}

void QosBasicSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   NevBaseSm::zubDoZombieReactors( zombie );
   qosStatus_.zombieIs( zombie );
   qosHelper_.zombieIs( zombie );
   ethPhyIntfStatusDir_.zombieIs( zombie );
   qosCounterConfig_.zombieIs( zombie );
   clock_.zombieIs( zombie );
   verifyData_.zombieIs( zombie );
   for( auto it = status_.iter(); it; ++it )
      it.value()->zombieIs( zombie );
   for( auto it = dscpRewriteMap_.iter(); it; ++it )
      it.value()->zombieIs( zombie );
   for( auto it = cosToTcProfile_.iter(); it; ++it )
      it.value()->zombieIs( zombie );
   for( auto it = qosIntfSm().iter(); it; ++it )
      it.value()->zubDoZombieReactors( zombie );
   for( auto it = ecnIntfCounterConfigSm().iter(); it; ++it )
      it.value()->zubDoZombieReactors( zombie );
}

// ---- the agent's entry points ----

Zub::Ptr< QosBasicSm > QosBasicSmIs(
      Zub::Ptr< NevCommonSmData const > const& ncsd, Zub::Ptr< Qos::Status const > const& qosStatus,
      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus,
      Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus,
      Zub::Ptr< NevHelper::QosBasicHelper > const& qosHelper,
      Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > const& ethPhyIntfStatusDir,
      Zub::Ptr< Qos::CounterConfig const > const& qosCounterConfig,
      Zub::Ptr< Kesh::TimerWheel > const& clock ) {
   auto sm = Zub::make< QosBasicSm >( ncsd, qosStatus, qosHwStatus, qosSliceHwStatus, qosHelper,
                                      ethPhyIntfStatusDir, qosCounterConfig, clock );
   sm->hasNotificationActiveIs( true );
   return sm;
}

Zub::Ptr< QosBasicSm > qosBasicSmFactory(
      Zub::Ptr< NevCommonSmData const > const& ncsd, Zub::Ptr< Qos::Status const > const& qosStatus,
      Zub::Ptr< Qos::HwStatus const > const& qosHwStatus,
      Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus,
      Zub::Ptr< NevHelper::QosBasicHelper > const& qosHelper,
      Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > const& ethPhyIntfStatusDir,
      Zub::Ptr< Qos::CounterConfig const > const& qosCounterConfig,
      Zub::Ptr< Kesh::TimerWheel > const& clock ) {
   return QosBasicSmIs( ncsd, qosStatus, qosHwStatus, qosSliceHwStatus, qosHelper,
                        ethPhyIntfStatusDir, qosCounterConfig, clock );
}

}  // namespace Nev
