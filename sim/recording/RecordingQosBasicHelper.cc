#include "NevQos/sim/recording/RecordingQosBasicHelper.h"

#include "NevQos/sim/chip/ChipText.h"

namespace Sim {

namespace {

CallRecorder::Operations const& operations() {
   static CallRecorder::Operations const table{
      { "trustMode", typeid( Qos::TrustMode ) },
      { "guaranteedBwIsValid", typeid( bool ) },
      { "shapeRateIsValid", typeid( bool ) },
      { "initializationComplete", typeid( void ) },
      { "handleEthPhyIntfStatusActive", typeid( void ) },
      { "hwInit", typeid( void ) },
      { "programCosToTcMap", typeid( void ) },
      { "programDscpToTcMap", typeid( void ) },
      { "programDscpToDpMap", typeid( void ) },
      { "programExpToTcMap", typeid( void ) },
      { "programTcToCosMap", typeid( void ) },
      { "programTcToDscpMap", typeid( void ) },
      { "programTcToExpMap", typeid( void ) },
      { "programCosRewriteEnabled", typeid( void ) },
      { "programDscpRewriteEnabled", typeid( void ) },
      { "programTcToUcTxQueueMap", typeid( void ) },
      { "programTcToMcTxQueueMap", typeid( void ) },
      { "programGlobalEcn", typeid( void ) },
      { "programIntfTrustModeCos", typeid( void ) },
      { "programIntfTrustModeDscp", typeid( void ) },
      { "programIntfTrustModeUntrusted", typeid( void ) },
      { "programIntfDefaultCos", typeid( void ) },
      { "programIntfDefaultDscp", typeid( void ) },
      { "programIntfShapeRate", typeid( void ) },
      { "programIntfDefaults", typeid( void ) },
      { "handleQosVerify", typeid( void ) },
      { "programIntfTxQueuePriority", typeid( void ) },
      { "programIntfTxQueueShapeRate", typeid( void ) },
      { "programIntfTxQueueGuaranteedBw", typeid( void ) },
      { "programIntfTxQueueEcn", typeid( void ) },
      { "programIntfTxQueueNonEct", typeid( void ) },
      { "programIntfTxQueueEcnDelayThreshold", typeid( void ) },
      { "programIntfTxQueueEcnCount", typeid( bool ) },
      { "programIntfTxQueueWred", typeid( void ) },
      { "programIntfTxQueueDropThresholdForDp", typeid( void ) },
      { "programIntfTxQueueDropThresholdDefaults", typeid( void ) },
      { "programIntfTxQueueDefaults", typeid( void ) },
      { "programDscpMap", typeid( void ) },
      { "deleteDscpMap", typeid( void ) },
      { "programIntfToDscpRewriteMap", typeid( void ) },
      { "updateTcToDscpMapping", typeid( void ) },
      { "handleServicePolicyDP1Status", typeid( void ) },
      { "addCosToTcProfile", typeid( void ) },
      { "removeCosToTcProfile", typeid( void ) },
      { "handleIntfToCosToTcProfile", typeid( void ) },
      { "updateCosToTcProfileMapping", typeid( void ) },
   };
   return table;
}

}  // namespace

RecordingQosBasicHelper::RecordingQosBasicHelper( Zub::Ptr< NevHelper::QosBasicHelper > inner,
                                                  Zub::Ptr< Kesh::TimerWheel > clock )
    : QosBasicHelper( inner->qosStatus(), inner->qosHwStatus(), inner->qosSliceHwStatus() )
    , CallRecorder( "basic", operations(), std::move( clock ) )
    , inner_( std::move( inner ) ) {
   asyncTcamOperationsSupportedIs( inner_->asyncTcamOperationsSupported() );
   mirror_ = Zub::make< AsyncResultMirror >( inner_, this );
}

RecordingQosBasicHelper::~RecordingQosBasicHelper() = default;

Qos::TrustMode RecordingQosBasicHelper::trustMode( Qos::IntfStatus const* intfStatus ) {
   taking( "trustMode" );
   if( auto const answer = scripted< Qos::TrustMode >( "trustMode" ) ) return *answer;
   return inner_->trustMode( intfStatus );
}

bool RecordingQosBasicHelper::guaranteedBwIsValid( Qos::GuaranteedBw const& guaranteedBw ) {
   taking( "guaranteedBwIsValid" );
   if( auto const answer = scripted< bool >( "guaranteedBwIsValid" ) ) return *answer;
   return inner_->guaranteedBwIsValid( guaranteedBw );
}

bool RecordingQosBasicHelper::shapeRateIsValid( Qos::ShapeRate const& shapeRate ) {
   taking( "shapeRateIsValid" );
   if( auto const answer = scripted< bool >( "shapeRateIsValid" ) ) return *answer;
   return inner_->shapeRateIsValid( shapeRate );
}

void RecordingQosBasicHelper::initializationComplete() {
   if( taking( "initializationComplete" ) ) record( "initializationComplete", {} );
   if( acted( "initializationComplete" ) ) return;
   inner_->initializationComplete();
}

void RecordingQosBasicHelper::handleEthPhyIntfStatusActive( Mirel::IntfId const& intfId ) {
   if( taking( "handleEthPhyIntfStatusActive" ) ) {
      record( "handleEthPhyIntfStatusActive", { { "intfId", intfName( intfId ) } } );
   }
   if( acted( "handleEthPhyIntfStatusActive" ) ) return;
   inner_->handleEthPhyIntfStatusActive( intfId );
}

void RecordingQosBasicHelper::hwInit() {
   if( taking( "hwInit" ) ) record( "hwInit", {} );
   if( acted( "hwInit" ) ) return;
   inner_->hwInit();
}

void RecordingQosBasicHelper::programCosToTcMap( Qos::Cos cos ) {
   if( taking( "programCosToTcMap" ) ) record( "programCosToTcMap", { { "cos", argOf( cos ) } } );
   if( acted( "programCosToTcMap" ) ) return;
   inner_->programCosToTcMap( cos );
}

void RecordingQosBasicHelper::programDscpToTcMap( Qos::Dscp dscp ) {
   if( taking( "programDscpToTcMap" ) ) {
      record( "programDscpToTcMap", { { "dscp", argOf( dscp ) } } );
   }
   if( acted( "programDscpToTcMap" ) ) return;
   inner_->programDscpToTcMap( dscp );
}

void RecordingQosBasicHelper::programDscpToDpMap( Qos::Dscp dscp ) {
   if( taking( "programDscpToDpMap" ) ) {
      record( "programDscpToDpMap", { { "dscp", argOf( dscp ) } } );
   }
   if( acted( "programDscpToDpMap" ) ) return;
   inner_->programDscpToDpMap( dscp );
}

void RecordingQosBasicHelper::programExpToTcMap( Qos::Exp exp ) {
   if( taking( "programExpToTcMap" ) ) record( "programExpToTcMap", { { "exp", argOf( exp ) } } );
   if( acted( "programExpToTcMap" ) ) return;
   inner_->programExpToTcMap( exp );
}

void RecordingQosBasicHelper::programTcToCosMap( Qos::TrafficClass tc ) {
   if( taking( "programTcToCosMap" ) ) record( "programTcToCosMap", { { "tc", argOf( tc ) } } );
   if( acted( "programTcToCosMap" ) ) return;
   inner_->programTcToCosMap( tc );
}

void RecordingQosBasicHelper::programTcToDscpMap( Qos::TrafficClass tc ) {
   if( taking( "programTcToDscpMap" ) ) record( "programTcToDscpMap", { { "tc", argOf( tc ) } } );
   if( acted( "programTcToDscpMap" ) ) return;
   inner_->programTcToDscpMap( tc );
}

void RecordingQosBasicHelper::programTcToExpMap( Qos::TrafficClass tc ) {
   if( taking( "programTcToExpMap" ) ) record( "programTcToExpMap", { { "tc", argOf( tc ) } } );
   if( acted( "programTcToExpMap" ) ) return;
   inner_->programTcToExpMap( tc );
}

void RecordingQosBasicHelper::programCosRewriteEnabled() {
   if( taking( "programCosRewriteEnabled" ) ) record( "programCosRewriteEnabled", {} );
   if( acted( "programCosRewriteEnabled" ) ) return;
   inner_->programCosRewriteEnabled();
}

void RecordingQosBasicHelper::programDscpRewriteEnabled() {
   if( taking( "programDscpRewriteEnabled" ) ) record( "programDscpRewriteEnabled", {} );
   if( acted( "programDscpRewriteEnabled" ) ) return;
   inner_->programDscpRewriteEnabled();
}

void RecordingQosBasicHelper::programTcToUcTxQueueMap( Qos::TrafficClass tc ) {
   if( taking( "programTcToUcTxQueueMap" ) ) {
      record( "programTcToUcTxQueueMap", { { "tc", argOf( tc ) } } );
   }
   if( acted( "programTcToUcTxQueueMap" ) ) return;
   inner_->programTcToUcTxQueueMap( tc );
}

void RecordingQosBasicHelper::programTcToMcTxQueueMap( Qos::TrafficClass tc ) {
   if( taking( "programTcToMcTxQueueMap" ) ) {
      record( "programTcToMcTxQueueMap", { { "tc", argOf( tc ) } } );
   }
   if( acted( "programTcToMcTxQueueMap" ) ) return;
   inner_->programTcToMcTxQueueMap( tc );
}

void RecordingQosBasicHelper::programGlobalEcn() {
   if( taking( "programGlobalEcn" ) ) record( "programGlobalEcn", {} );
   if( acted( "programGlobalEcn" ) ) return;
   inner_->programGlobalEcn();
}

void RecordingQosBasicHelper::programIntfTrustModeCos( Qos::IntfStatus const& intfStatus ) {
   if( taking( "programIntfTrustModeCos" ) ) {
      record( "programIntfTrustModeCos", { { "intfStatus", intfName( intfStatus.key() ) } } );
   }
   if( acted( "programIntfTrustModeCos" ) ) return;
   inner_->programIntfTrustModeCos( intfStatus );
}

void RecordingQosBasicHelper::programIntfTrustModeDscp( Qos::IntfStatus const& intfStatus ) {
   if( taking( "programIntfTrustModeDscp" ) ) {
      record( "programIntfTrustModeDscp", { { "intfStatus", intfName( intfStatus.key() ) } } );
   }
   if( acted( "programIntfTrustModeDscp" ) ) return;
   inner_->programIntfTrustModeDscp( intfStatus );
}

void RecordingQosBasicHelper::programIntfTrustModeUntrusted( Qos::IntfStatus const& intfStatus ) {
   if( taking( "programIntfTrustModeUntrusted" ) ) {
      record( "programIntfTrustModeUntrusted", { { "intfStatus", intfName( intfStatus.key() ) } } );
   }
   if( acted( "programIntfTrustModeUntrusted" ) ) return;
   inner_->programIntfTrustModeUntrusted( intfStatus );
}

void RecordingQosBasicHelper::programIntfDefaultCos( Qos::IntfStatus const& intfStatus ) {
   if( taking( "programIntfDefaultCos" ) ) {
      record( "programIntfDefaultCos", { { "intfStatus", intfName( intfStatus.key() ) } } );
   }
   if( acted( "programIntfDefaultCos" ) ) return;
   inner_->programIntfDefaultCos( intfStatus );
}

void RecordingQosBasicHelper::programIntfDefaultDscp( Qos::IntfStatus const& intfStatus ) {
   if( taking( "programIntfDefaultDscp" ) ) {
      record( "programIntfDefaultDscp", { { "intfStatus", intfName( intfStatus.key() ) } } );
   }
   if( acted( "programIntfDefaultDscp" ) ) return;
   inner_->programIntfDefaultDscp( intfStatus );
}

void RecordingQosBasicHelper::programIntfShapeRate( Qos::IntfStatus const& intfStatus ) {
   if( taking( "programIntfShapeRate" ) ) {
      record( "programIntfShapeRate", { { "intfStatus", intfName( intfStatus.key() ) } } );
   }
   if( acted( "programIntfShapeRate" ) ) return;
   inner_->programIntfShapeRate( intfStatus );
}

void RecordingQosBasicHelper::programIntfDefaults( Qos::IntfStatus const& intfStatus ) {
   if( taking( "programIntfDefaults" ) ) {
      record( "programIntfDefaults", { { "intfStatus", intfName( intfStatus.key() ) } } );
   }
   if( acted( "programIntfDefaults" ) ) return;
   inner_->programIntfDefaults( intfStatus );
}

void RecordingQosBasicHelper::handleQosVerify() {
   if( taking( "handleQosVerify" ) ) record( "handleQosVerify", {} );
   if( acted( "handleQosVerify" ) ) return;
   inner_->handleQosVerify();
}

void RecordingQosBasicHelper::programIntfTxQueuePriority(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& txQueueStatus ) {
   if( taking( "programIntfTxQueuePriority" ) ) {
      record( "programIntfTxQueuePriority",
              { { "intfStatus", intfName( intfStatus.key() ) },
                { "txQueueStatus", queueText( txQueueStatus.key() ) } } );
   }
   if( acted( "programIntfTxQueuePriority" ) ) return;
   inner_->programIntfTxQueuePriority( intfStatus, txQueueStatus );
}

void RecordingQosBasicHelper::programIntfTxQueueShapeRate(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& txQueueStatus ) {
   if( taking( "programIntfTxQueueShapeRate" ) ) {
      record( "programIntfTxQueueShapeRate",
              { { "intfStatus", intfName( intfStatus.key() ) },
                { "txQueueStatus", queueText( txQueueStatus.key() ) } } );
   }
   if( acted( "programIntfTxQueueShapeRate" ) ) return;
   inner_->programIntfTxQueueShapeRate( intfStatus, txQueueStatus );
}

void RecordingQosBasicHelper::programIntfTxQueueGuaranteedBw(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& txQueueStatus ) {
   if( taking( "programIntfTxQueueGuaranteedBw" ) ) {
      record( "programIntfTxQueueGuaranteedBw",
              { { "intfStatus", intfName( intfStatus.key() ) },
                { "txQueueStatus", queueText( txQueueStatus.key() ) } } );
   }
   if( acted( "programIntfTxQueueGuaranteedBw" ) ) return;
   inner_->programIntfTxQueueGuaranteedBw( intfStatus, txQueueStatus );
}

void RecordingQosBasicHelper::programIntfTxQueueEcn( Qos::IntfStatus const& intfStatus,
                                                     Qos::TxQueueStatus const& txQueueStatus ) {
   if( taking( "programIntfTxQueueEcn" ) ) {
      record( "programIntfTxQueueEcn", { { "intfStatus", intfName( intfStatus.key() ) },
                                         { "txQueueStatus", queueText( txQueueStatus.key() ) } } );
   }
   if( acted( "programIntfTxQueueEcn" ) ) return;
   inner_->programIntfTxQueueEcn( intfStatus, txQueueStatus );
}

void RecordingQosBasicHelper::programIntfTxQueueNonEct( Qos::IntfStatus const& intfStatus,
                                                        Qos::TxQueueStatus const& txQueueStatus ) {
   if( taking( "programIntfTxQueueNonEct" ) ) {
      record( "programIntfTxQueueNonEct",
              { { "intfStatus", intfName( intfStatus.key() ) },
                { "txQueueStatus", queueText( txQueueStatus.key() ) } } );
   }
   if( acted( "programIntfTxQueueNonEct" ) ) return;
   inner_->programIntfTxQueueNonEct( intfStatus, txQueueStatus );
}

void RecordingQosBasicHelper::programIntfTxQueueEcnDelayThreshold(
      Qos::IntfStatus const& intfStatus, Qos::TxQueue const& txQueueId, bool delayEcnEnabled,
      Qos::EcnDelayThreshold ecnDelayThreshold ) {
   if( taking( "programIntfTxQueueEcnDelayThreshold" ) ) {
      record( "programIntfTxQueueEcnDelayThreshold",
              { { "intfStatus", intfName( intfStatus.key() ) },
                { "txQueueId", queueText( txQueueId ) },
                { "delayEcnEnabled", argOf( delayEcnEnabled ) },
                { "ecnDelayThreshold", argOf( ecnDelayThreshold ) } } );
   }
   if( acted( "programIntfTxQueueEcnDelayThreshold" ) ) return;
   inner_->programIntfTxQueueEcnDelayThreshold( intfStatus, txQueueId, delayEcnEnabled,
                                                ecnDelayThreshold );
}

bool RecordingQosBasicHelper::programIntfTxQueueEcnCount( Mirel::IntfId const& intfId,
                                                          Qos::TxQueueId txQueueId, bool enable ) {
   if( taking( "programIntfTxQueueEcnCount" ) ) {
      record( "programIntfTxQueueEcnCount", { { "intfId", intfName( intfId ) },
                                              { "txQueueId", argOf( txQueueId ) },
                                              { "enable", argOf( enable ) } } );
   }
   if( auto const answer = scripted< bool >( "programIntfTxQueueEcnCount" ) ) return *answer;
   return inner_->programIntfTxQueueEcnCount( intfId, txQueueId, enable );
}

void RecordingQosBasicHelper::programIntfTxQueueWred( Qos::IntfStatus const& intfStatus,
                                                      Qos::TxQueueStatus const& txQueueStatus ) {
   if( taking( "programIntfTxQueueWred" ) ) {
      record( "programIntfTxQueueWred", { { "intfStatus", intfName( intfStatus.key() ) },
                                          { "txQueueStatus", queueText( txQueueStatus.key() ) } } );
   }
   if( acted( "programIntfTxQueueWred" ) ) return;
   inner_->programIntfTxQueueWred( intfStatus, txQueueStatus );
}

void RecordingQosBasicHelper::programIntfTxQueueDropThresholdForDp(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& txQueueStatus,
      Qos::DropPrecedence dp ) {
   if( taking( "programIntfTxQueueDropThresholdForDp" ) ) {
      record( "programIntfTxQueueDropThresholdForDp",
              { { "intfStatus", intfName( intfStatus.key() ) },
                { "txQueueStatus", queueText( txQueueStatus.key() ) },
                { "dp", argOf( dp ) } } );
   }
   if( acted( "programIntfTxQueueDropThresholdForDp" ) ) return;
   inner_->programIntfTxQueueDropThresholdForDp( intfStatus, txQueueStatus, dp );
}

void RecordingQosBasicHelper::programIntfTxQueueDropThresholdDefaults(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& txQueueStatus ) {
   if( taking( "programIntfTxQueueDropThresholdDefaults" ) ) {
      record( "programIntfTxQueueDropThresholdDefaults",
              { { "intfStatus", intfName( intfStatus.key() ) },
                { "txQueueStatus", queueText( txQueueStatus.key() ) } } );
   }
   if( acted( "programIntfTxQueueDropThresholdDefaults" ) ) return;
   inner_->programIntfTxQueueDropThresholdDefaults( intfStatus, txQueueStatus );
}

void RecordingQosBasicHelper::programIntfTxQueueDefaults(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& txQueueStatus ) {
   if( taking( "programIntfTxQueueDefaults" ) ) {
      record( "programIntfTxQueueDefaults",
              { { "intfStatus", intfName( intfStatus.key() ) },
                { "txQueueStatus", queueText( txQueueStatus.key() ) } } );
   }
   if( acted( "programIntfTxQueueDefaults" ) ) return;
   inner_->programIntfTxQueueDefaults( intfStatus, txQueueStatus );
}

void RecordingQosBasicHelper::programDscpMap( Zub::Name const& mapName ) {
   if( taking( "programDscpMap" ) ) {
      record( "programDscpMap", { { "mapName", argOf( mapName ) } } );
   }
   if( acted( "programDscpMap" ) ) return;
   inner_->programDscpMap( mapName );
}

void RecordingQosBasicHelper::deleteDscpMap( Zub::Name const& mapName ) {
   if( taking( "deleteDscpMap" ) ) record( "deleteDscpMap", { { "mapName", argOf( mapName ) } } );
   if( acted( "deleteDscpMap" ) ) return;
   inner_->deleteDscpMap( mapName );
}

void RecordingQosBasicHelper::programIntfToDscpRewriteMap( Qos::IntfStatus const& intfStatus ) {
   if( taking( "programIntfToDscpRewriteMap" ) ) {
      record( "programIntfToDscpRewriteMap", { { "intfStatus", intfName( intfStatus.key() ) } } );
   }
   if( acted( "programIntfToDscpRewriteMap" ) ) return;
   inner_->programIntfToDscpRewriteMap( intfStatus );
}

void RecordingQosBasicHelper::updateTcToDscpMapping( Zub::Name const& mapName,
                                                     Qos::TrafficClass tc ) {
   if( taking( "updateTcToDscpMapping" ) ) {
      record( "updateTcToDscpMapping", { { "mapName", argOf( mapName ) }, { "tc", argOf( tc ) } } );
   }
   if( acted( "updateTcToDscpMapping" ) ) return;
   inner_->updateTcToDscpMapping( mapName, tc );
}

void RecordingQosBasicHelper::handleServicePolicyDP1Status() {
   if( taking( "handleServicePolicyDP1Status" ) ) record( "handleServicePolicyDP1Status", {} );
   if( acted( "handleServicePolicyDP1Status" ) ) return;
   inner_->handleServicePolicyDP1Status();
}

void RecordingQosBasicHelper::addCosToTcProfile( Zub::Name const& profileName ) {
   if( taking( "addCosToTcProfile" ) ) {
      record( "addCosToTcProfile", { { "profileName", argOf( profileName ) } } );
   }
   if( acted( "addCosToTcProfile" ) ) return;
   inner_->addCosToTcProfile( profileName );
}

void RecordingQosBasicHelper::removeCosToTcProfile( Zub::Name const& profileName ) {
   if( taking( "removeCosToTcProfile" ) ) {
      record( "removeCosToTcProfile", { { "profileName", argOf( profileName ) } } );
   }
   if( acted( "removeCosToTcProfile" ) ) return;
   inner_->removeCosToTcProfile( profileName );
}

void RecordingQosBasicHelper::handleIntfToCosToTcProfile( Mirel::IntfId const& intfId,
                                                          bool restoration ) {
   if( taking( "handleIntfToCosToTcProfile" ) ) {
      record( "handleIntfToCosToTcProfile",
              { { "intfId", intfName( intfId ) }, { "restoration", argOf( restoration ) } } );
   }
   if( acted( "handleIntfToCosToTcProfile" ) ) return;
   inner_->handleIntfToCosToTcProfile( intfId, restoration );
}

void RecordingQosBasicHelper::updateCosToTcProfileMapping( Zub::Name const& profileName,
                                                           Qos::Cos cos ) {
   if( taking( "updateCosToTcProfileMapping" ) ) {
      record( "updateCosToTcProfileMapping",
              { { "profileName", argOf( profileName ) }, { "cos", argOf( cos ) } } );
   }
   if( acted( "updateCosToTcProfileMapping" ) ) return;
   inner_->updateCosToTcProfileMapping( profileName, cos );
}

}  // namespace Sim
