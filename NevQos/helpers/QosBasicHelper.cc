#include "NevQos/helpers/QosBasicHelper.h"

#include <utility>

#include "NevQos/platform/nev/NevAssert.h"
#include "NevQos/platform/zub/Assert.h"

namespace NevHelper {

using Qos::orDefault;

QosBasicHelper::QosBasicHelper( Zub::Ptr< Qos::Status const > qosStatus,
                                Zub::Ptr< Qos::HwStatus > qosHwStatus,
                                Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus )
    : Nev::NevAsyncBaseHelper( Zub::Name( "qosBasicHelper" ) )
    , qosStatus_( std::move( qosStatus ) )
    , qosHwStatus_( std::move( qosHwStatus ) )
    , qosSliceHwStatus_( std::move( qosSliceHwStatus ) ) {}

void QosBasicHelper::unimplemented( char const* message ) const {
   Zub::String const text( message );
   if( Nev::noopAgent() ) return;
   this->nevAssert( text );
}

// ---- Read side

Qos::TrafficClass QosBasicHelper::defaultTc( Qos::IntfStatus const* intfStatus ) {
   switch( trustMode( intfStatus ) ) {
      case Qos::trustDscp_:
         return dscpToTc( defaultDscp( intfStatus ) );
      case Qos::trustCos_:
      case Qos::untrusted_:
         // An untrusted port classifies by its default COS.
         return cosToTc( defaultCos( intfStatus ) );
      default:
         ZUB_ASSERT_TEXT( false, "false" );
         return Qos::TrafficClass();
   }
}

Qos::TrustMode QosBasicHelper::trustMode( Qos::IntfStatus const* intfStatus ) {
   return intfStatus ? intfStatus->trustMode() : qosHwStatus_->defaultTrustMode();
}

Qos::Cos QosBasicHelper::defaultCos( Qos::IntfStatus const* intfStatus ) const {
   if( !intfStatus || !intfStatus->defaultCos().isValid() ) return qosHwStatus_->defaultCos();
   return intfStatus->defaultCos();
}

Qos::TrafficClass QosBasicHelper::defaultCosToTc( Qos::IntfStatus const* intfStatus ) const {
   return cosToTc( defaultCos( intfStatus ) );
}

Qos::TrafficClass QosBasicHelper::cosToTc( Qos::Cos cos ) const {
   return orDefault( qosStatus_->cosToTcMap( cos ),
                     [ & ] { return qosHwStatus_->defaultCosToTcMap( cos ); } );
}

Qos::Dscp QosBasicHelper::defaultDscp( Qos::IntfStatus const* intfStatus ) const {
   if( !intfStatus || !intfStatus->defaultDscp().isValid() ) return qosHwStatus_->defaultDscp();
   return intfStatus->defaultDscp();
}

Qos::TrafficClass QosBasicHelper::defaultDscpToTc( Qos::IntfStatus const* intfStatus ) const {
   return dscpToTc( defaultDscp( intfStatus ) );
}

Qos::TrafficClass QosBasicHelper::dscpToTc( Qos::Dscp dscp ) const {
   return orDefault( qosStatus_->dscpToTcMap( dscp ),
                     [ & ] { return qosHwStatus_->defaultDscpToTcMap( dscp ); } );
}

Qos::DropPrecedence QosBasicHelper::dscpToDp( Qos::Dscp dscp ) const {
   // One default precedence for every DSCP.
   return orDefault( qosStatus_->dscpToDpMap( dscp ),
                     [ & ] { return qosHwStatus_->defaultDropPrecedence(); } );
}

Qos::TrafficClass QosBasicHelper::expToTc( Qos::Exp exp ) const {
   return orDefault( qosStatus_->expToTcMap( exp ),
                     [ & ] { return qosHwStatus_->defaultExpToTcMap( exp ); } );
}

Qos::Cos QosBasicHelper::tcToCos( Qos::TrafficClass tc ) const {
   return orDefault( qosStatus_->tcToCosMap( tc ),
                     [ & ] { return qosHwStatus_->defaultTcToCosMap( tc ); } );
}

Qos::Dscp QosBasicHelper::tcToDscp( Qos::TrafficClass tc ) const {
   return orDefault( qosStatus_->tcToDscpMap( tc ),
                     [ & ] { return qosHwStatus_->defaultTcToDscpMap( tc ); } );
}

Qos::Exp QosBasicHelper::tcToExp( Qos::TrafficClass tc ) const {
   return orDefault( qosStatus_->tcToExpMap( tc ),
                     [ & ] { return qosHwStatus_->defaultTcToExpMap( tc ); } );
}

Qos::TxQueueId QosBasicHelper::tcToUcTxQueue( Qos::TrafficClass tc ) const {
   return orDefault( qosStatus_->tcToTxQueueMap( tc ),
                     [ & ] { return qosHwStatus_->defaultTcToTxQueueMap( tc ); } );
}

Qos::TxQueueId QosBasicHelper::tcToMcTxQueue( Qos::TrafficClass tc ) const {
   return orDefault( qosStatus_->tcToMcTxQueueMap( tc ),
                     [ & ] { return qosHwStatus_->defaultTcToMcTxQueueMap( tc ); } );
}

bool QosBasicHelper::cosRewriteEnabled() const {
   return qosStatus_->cosRewriteEnabled();
}

bool QosBasicHelper::dscpRewriteEnabled() const {
   return qosStatus_->dscpRewriteEnabled();
}

Zub::String QosBasicHelper::guaranteedBwUnitToStr( Qos::GuaranteedBwUnit unit ) {
   switch( unit ) {
      case Qos::guaranteedBwUnitKbps_:
         return Zub::String( "kbps" );
      case Qos::guaranteedBwUnitPps_:
         return Zub::String( "pps" );
      case Qos::guaranteedBwUnitPercent_:
         return Zub::String( "percent" );
   }
   return Zub::String( "unknown unit" );
}

Zub::String QosBasicHelper::shapeRateUnitToStr( Qos::ShapeRateUnit unit ) {
   // A shape rate has no percent unit.
   switch( unit ) {
      case Qos::shapeRateUnitKbps_:
         return Zub::String( "kbps" );
      case Qos::shapeRateUnitPps_:
         return Zub::String( "pps" );
   }
   return Zub::String( "unknown unit" );
}

bool QosBasicHelper::guaranteedBwIsValid( Qos::GuaranteedBw const& guaranteedBw ) {
   std::uint32_t const rate = guaranteedBw.rate;
   Qos::HwStatus const& hw = *qosHwStatus_;
   switch( guaranteedBw.unit ) {
      case Qos::guaranteedBwUnitKbps_:
         return hw.minGuaranteedBwKbps() <= rate && rate <= hw.maxGuaranteedBwKbps();
      case Qos::guaranteedBwUnitPps_:
         return hw.minGuaranteedBwPps() <= rate && rate <= hw.maxGuaranteedBwPps();
      case Qos::guaranteedBwUnitPercent_:
         return 1 <= rate && rate <= 100;
   }
   return false;
}

bool QosBasicHelper::shapeRateIsValid( Qos::ShapeRate const& shapeRate ) {
   std::uint32_t const rate = shapeRate.rate;
   Qos::HwStatus const& hw = *qosHwStatus_;
   // The same lower bounds hold in kbps and in pps.
   if( rate < hw.minPortShapeRate() || rate < hw.minTxQueueShapeRate() ) return false;
   switch( shapeRate.unit ) {
      case Qos::shapeRateUnitKbps_:
         return rate <= hw.maxShapeRateKbps();
      case Qos::shapeRateUnitPps_:
         return rate <= hw.maxShapeRatePps();
   }
   return false;
}

// ---- Programming

void QosBasicHelper::initializationComplete() {}

void QosBasicHelper::handleEthPhyIntfStatusActive( Mirel::IntfId const& ) {}

void QosBasicHelper::hwInit() {
   unimplemented( "Unimplemented function QosHelper::hwInit()" );
}

void QosBasicHelper::programCosToTcMap( Qos::Cos ) {
   unimplemented( "Unimplemented function QosHelper::programCosToTcMap()" );
}

void QosBasicHelper::programDscpToTcMap( Qos::Dscp ) {
   unimplemented( "Unimplemented function QosHelper::programDscpToTcMap()" );
}

void QosBasicHelper::programDscpToDpMap( Qos::Dscp ) {}

void QosBasicHelper::programExpToTcMap( Qos::Exp ) {}

void QosBasicHelper::programTcToCosMap( Qos::TrafficClass ) {
   unimplemented( "Unimplemented function QosHelper::programTcToCosMap()" );
}

void QosBasicHelper::programTcToDscpMap( Qos::TrafficClass ) {
   unimplemented( "Unimplemented function QosHelper::programTcToDscpMap()" );
}

void QosBasicHelper::programTcToExpMap( Qos::TrafficClass ) {}

void QosBasicHelper::programCosRewriteEnabled() {
   unimplemented( "Unimplemented function QosHelper::programCosRewriteEnabled()" );
}

void QosBasicHelper::programDscpRewriteEnabled() {
   unimplemented( "Unimplemented function QosHelper::programDscpRewriteEnabled()" );
}

void QosBasicHelper::programTcToUcTxQueueMap( Qos::TrafficClass ) {
   unimplemented( "Unimplemented function QosHelper::programTcToTxQueueMap()" );
}

void QosBasicHelper::programTcToMcTxQueueMap( Qos::TrafficClass ) {
   unimplemented( "Unimplemented function QosHelper::programTcToMcTxQueueMap()" );
}

void QosBasicHelper::programGlobalEcn() {
   unimplemented( "Unimplemented function QosHelper::programGlobalEcn()" );
}

void QosBasicHelper::programIntfTrustModeCos( Qos::IntfStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTrusModeCos()" );
}

void QosBasicHelper::programIntfTrustModeDscp( Qos::IntfStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTrusModeDscp()" );
}

void QosBasicHelper::programIntfTrustModeUntrusted( Qos::IntfStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTrusModeUntrusted()" );
}

void QosBasicHelper::programIntfDefaultCos( Qos::IntfStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfDefaultCos()" );
}

void QosBasicHelper::programIntfDefaultDscp( Qos::IntfStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfDefaultDscp()" );
}

void QosBasicHelper::programIntfShapeRate( Qos::IntfStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfShapeRate()" );
}

void QosBasicHelper::programIntfDefaults( Qos::IntfStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfDefaults()" );
}

void QosBasicHelper::handleQosVerify() {
   unimplemented( "Unimplemented function QosHelper::handleQosVerify()" );
}

void QosBasicHelper::programIntfTxQueuePriority( Qos::IntfStatus const&,
                                                 Qos::TxQueueStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueuePriority()" );
}

void QosBasicHelper::programIntfTxQueueShapeRate( Qos::IntfStatus const&,
                                                  Qos::TxQueueStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueShapeRate()" );
}

void QosBasicHelper::programIntfTxQueueGuaranteedBw( Qos::IntfStatus const&,
                                                     Qos::TxQueueStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueGuaranteedBw()" );
}

void QosBasicHelper::programIntfTxQueueEcn( Qos::IntfStatus const&, Qos::TxQueueStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueEcn()" );
}

void QosBasicHelper::programIntfTxQueueNonEct( Qos::IntfStatus const&, Qos::TxQueueStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueNonEct()" );
}

void QosBasicHelper::programIntfTxQueueEcnDelayThreshold( Qos::IntfStatus const&,
                                                          Qos::TxQueue const&, bool,
                                                          Qos::EcnDelayThreshold ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueEcnDelayThreshold()" );
}

bool QosBasicHelper::programIntfTxQueueEcnCount( Mirel::IntfId const&, Qos::TxQueueId, bool ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueEcnCount()" );
   return false;
}

void QosBasicHelper::programIntfTxQueueWred( Qos::IntfStatus const&, Qos::TxQueueStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueWred()" );
}

void QosBasicHelper::programIntfTxQueueDropThresholdForDp( Qos::IntfStatus const&,
                                                           Qos::TxQueueStatus const&,
                                                           Qos::DropPrecedence ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueDropThreshold()" );
}

void QosBasicHelper::programIntfTxQueueDropThresholdDefaults( Qos::IntfStatus const&,
                                                              Qos::TxQueueStatus const& ) {
   unimplemented(
         "Unimplemented function QosHelper::\n            "
         "programIntfTxQueueDropThresholdDefaults()" );
}

void QosBasicHelper::programIntfTxQueueDefaults( Qos::IntfStatus const&,
                                                 Qos::TxQueueStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfTxQueueDefaults()" );
}

void QosBasicHelper::programDscpMap( Zub::Name const& ) {
   unimplemented( "Unimplemented function QosHelper::programDscpMap()" );
}

void QosBasicHelper::deleteDscpMap( Zub::Name const& ) {
   unimplemented( "Unimplemented function QosHelper::deleteDscpMap()" );
}

void QosBasicHelper::programIntfToDscpRewriteMap( Qos::IntfStatus const& ) {
   unimplemented( "Unimplemented function QosHelper::programIntfToDscpRewriteMap()" );
}

void QosBasicHelper::updateTcToDscpMapping( Zub::Name const&, Qos::TrafficClass ) {
   unimplemented( "Unimplemented function QosHelper::updateTcToDscpMapping()" );
}

void QosBasicHelper::handleServicePolicyDP1Status() {}

void QosBasicHelper::addCosToTcProfile( Zub::Name const& ) {
   unimplemented( "Unimplemented function QosHelper::programCosToTcProfile()" );
}

void QosBasicHelper::removeCosToTcProfile( Zub::Name const& ) {
   unimplemented( "Unimplemented function QosHelper::deleteCosToTcProfile()" );
}

void QosBasicHelper::handleIntfToCosToTcProfile( Mirel::IntfId const&, bool ) {
   unimplemented( "Unimplemented function QosHelper::programIntfToCosToTcProfile()" );
}

void QosBasicHelper::updateCosToTcProfileMapping( Zub::Name const&, Qos::Cos ) {
   unimplemented( "Unimplemented function QosHelper::updateCosToTcProfileMapping()" );
}

}  // namespace NevHelper
