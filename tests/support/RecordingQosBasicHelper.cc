#include "support/RecordingQosBasicHelper.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace NevQosTest {

namespace {

// Every operation the recorder answers, for checking the names tests give.
char const* const ops[] = {
   "initializationComplete",
   "handleEthPhyIntfStatusActive",
   "hwInit",
   "programCosToTcMap",
   "programDscpToTcMap",
   "programDscpToDpMap",
   "programExpToTcMap",
   "programTcToCosMap",
   "programTcToDscpMap",
   "programTcToExpMap",
   "programCosRewriteEnabled",
   "programDscpRewriteEnabled",
   "programTcToUcTxQueueMap",
   "programTcToMcTxQueueMap",
   "programGlobalEcn",
   "programIntfTrustModeCos",
   "programIntfTrustModeDscp",
   "programIntfTrustModeUntrusted",
   "programIntfDefaultCos",
   "programIntfDefaultDscp",
   "programIntfShapeRate",
   "programIntfDefaults",
   "handleQosVerify",
   "programIntfTxQueuePriority",
   "programIntfTxQueueShapeRate",
   "programIntfTxQueueGuaranteedBw",
   "programIntfTxQueueEcn",
   "programIntfTxQueueNonEct",
   "programIntfTxQueueEcnDelayThreshold",
   "programIntfTxQueueEcnCount",
   "programIntfTxQueueWred",
   "programIntfTxQueueDropThresholdForDp",
   "programIntfTxQueueDropThresholdDefaults",
   "programIntfTxQueueDefaults",
   "programDscpMap",
   "deleteDscpMap",
   "programIntfToDscpRewriteMap",
   "updateTcToDscpMapping",
   "handleServicePolicyDP1Status",
   "addCosToTcProfile",
   "removeCosToTcProfile",
   "handleIntfToCosToTcProfile",
   "updateCosToTcProfileMapping",
};

std::string queueText( Qos::TxQueue const& q ) {
   return ( q.type() == Qos::multicastQueue_ ? "mc" : "uc" ) + std::to_string( unsigned( q.id() ) );
}

}  // namespace

// One line of the record, built field by field.
class RecordingQosBasicHelper::Line {
 public:
   explicit Line( char const* op ) : op_( op ), text_( op ) {}

   std::string_view op() const { return op_; }
   std::string const& text() const { return text_; }

   Line& field( char const* label, std::string_view value ) {
      text_ += ' ';
      text_ += label;
      text_ += '=';
      text_ += value;
      return *this;
   }
   Line& num( char const* label, unsigned v ) { return field( label, std::to_string( v ) ); }
   Line& flag( char const* label, bool v ) { return field( label, v ? "true" : "false" ); }
   Line& name( char const* label, Zub::Name const& n ) { return field( label, n.view() ); }
   Line& intf( Mirel::IntfId const& id ) { return field( "intf", id.stringValue().view() ); }
   Line& intf( Qos::IntfStatus const& s ) { return intf( s.key() ); }
   Line& queue( Qos::TxQueue const& q ) { return field( "txQueue", queueText( q ) ); }
   Line& queue( Qos::TxQueueStatus const& s ) { return queue( s.key() ); }

 private:
   std::string_view op_;
   std::string text_;
};

RecordingQosBasicHelper::RecordingQosBasicHelper( Zub::Ptr< Qos::Status const > qosStatus,
                                                  Zub::Ptr< Qos::HwStatus > qosHwStatus,
                                                  Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus )
    : QosBasicHelper( std::move( qosStatus ), std::move( qosHwStatus ),
                      std::move( qosSliceHwStatus ) ) {}

// ---- The record

std::vector< std::string > RecordingQosBasicHelper::callsMatching( std::string_view prefix ) const {
   std::vector< std::string > out;
   for( auto const& c : calls_ ) {
      if( !c.starts_with( prefix ) ) continue;
      // A bare name must not pick up a longer name: "programIntfTxQueueDefaults" is not
      // "programIntfTxQueueDefaultsX".
      if( c.size() > prefix.size() && prefix.find( ' ' ) == std::string_view::npos &&
          c[ prefix.size() ] != ' ' ) {
         continue;
      }
      out.push_back( c );
   }
   return out;
}

std::string RecordingQosBasicHelper::callsText() const {
   std::string out;
   for( auto const& c : calls_ )
      out += c + "\n";
   return out;
}

void RecordingQosBasicHelper::record( Line const& line ) {
   calls_.push_back( line.text() );
   auto failure = failures_.find( line.op() );
   if( failure == failures_.end() ) return;
   qosSliceHwStatus()
         ->hwProgrammingVersionAndStatusIs( failure->second )
         ->hwProgrammingStatusIs( Qos::hwProgrammingFailed_ );
}

// ---- Failures

void RecordingQosBasicHelper::failIs( std::string_view op, Qos::FeatureName feature ) {
   if( std::find( std::begin( ops ), std::end( ops ), op ) == std::end( ops ) ) {
      throw std::invalid_argument( "RecordingQosBasicHelper: no operation " + std::string( op ) );
   }
   failures_[ std::string( op ) ] = feature;
}

void RecordingQosBasicHelper::failDel( std::string_view op ) {
   auto it = failures_.find( op );
   if( it != failures_.end() ) failures_.erase( it );
}

// ---- The operations

void RecordingQosBasicHelper::initializationComplete() {
   record( Line( "initializationComplete" ) );
}

void RecordingQosBasicHelper::handleEthPhyIntfStatusActive( Mirel::IntfId const& intfId ) {
   record( Line( "handleEthPhyIntfStatusActive" ).intf( intfId ) );
}

void RecordingQosBasicHelper::hwInit() {
   record( Line( "hwInit" ) );
}

void RecordingQosBasicHelper::programCosToTcMap( Qos::Cos cos ) {
   record( Line( "programCosToTcMap" ).num( "cos", cos ) );
}

void RecordingQosBasicHelper::programDscpToTcMap( Qos::Dscp dscp ) {
   record( Line( "programDscpToTcMap" ).num( "dscp", dscp ) );
}

void RecordingQosBasicHelper::programDscpToDpMap( Qos::Dscp dscp ) {
   record( Line( "programDscpToDpMap" ).num( "dscp", dscp ) );
}

void RecordingQosBasicHelper::programExpToTcMap( Qos::Exp exp ) {
   record( Line( "programExpToTcMap" ).num( "exp", exp ) );
}

void RecordingQosBasicHelper::programTcToCosMap( Qos::TrafficClass tc ) {
   record( Line( "programTcToCosMap" ).num( "tc", tc ) );
}

void RecordingQosBasicHelper::programTcToDscpMap( Qos::TrafficClass tc ) {
   record( Line( "programTcToDscpMap" ).num( "tc", tc ) );
}

void RecordingQosBasicHelper::programTcToExpMap( Qos::TrafficClass tc ) {
   record( Line( "programTcToExpMap" ).num( "tc", tc ) );
}

void RecordingQosBasicHelper::programCosRewriteEnabled() {
   record( Line( "programCosRewriteEnabled" ) );
}

void RecordingQosBasicHelper::programDscpRewriteEnabled() {
   record( Line( "programDscpRewriteEnabled" ) );
}

void RecordingQosBasicHelper::programTcToUcTxQueueMap( Qos::TrafficClass tc ) {
   record( Line( "programTcToUcTxQueueMap" ).num( "tc", tc ) );
}

void RecordingQosBasicHelper::programTcToMcTxQueueMap( Qos::TrafficClass tc ) {
   record( Line( "programTcToMcTxQueueMap" ).num( "tc", tc ) );
}

void RecordingQosBasicHelper::programGlobalEcn() {
   record( Line( "programGlobalEcn" ) );
}

void RecordingQosBasicHelper::programIntfTrustModeCos( Qos::IntfStatus const& intfStatus ) {
   record( Line( "programIntfTrustModeCos" ).intf( intfStatus ) );
}

void RecordingQosBasicHelper::programIntfTrustModeDscp( Qos::IntfStatus const& intfStatus ) {
   record( Line( "programIntfTrustModeDscp" ).intf( intfStatus ) );
}

void RecordingQosBasicHelper::programIntfTrustModeUntrusted( Qos::IntfStatus const& intfStatus ) {
   record( Line( "programIntfTrustModeUntrusted" ).intf( intfStatus ) );
}

void RecordingQosBasicHelper::programIntfDefaultCos( Qos::IntfStatus const& intfStatus ) {
   record( Line( "programIntfDefaultCos" ).intf( intfStatus ) );
}

void RecordingQosBasicHelper::programIntfDefaultDscp( Qos::IntfStatus const& intfStatus ) {
   record( Line( "programIntfDefaultDscp" ).intf( intfStatus ) );
}

void RecordingQosBasicHelper::programIntfShapeRate( Qos::IntfStatus const& intfStatus ) {
   record( Line( "programIntfShapeRate" ).intf( intfStatus ) );
}

void RecordingQosBasicHelper::programIntfDefaults( Qos::IntfStatus const& intfStatus ) {
   record( Line( "programIntfDefaults" ).intf( intfStatus ) );
}

void RecordingQosBasicHelper::handleQosVerify() {
   record( Line( "handleQosVerify" ) );
}

void RecordingQosBasicHelper::programIntfTxQueuePriority( Qos::IntfStatus const& intfStatus,
                                                          Qos::TxQueueStatus const& q ) {
   record( Line( "programIntfTxQueuePriority" ).intf( intfStatus ).queue( q ) );
}

void RecordingQosBasicHelper::programIntfTxQueueShapeRate( Qos::IntfStatus const& intfStatus,
                                                           Qos::TxQueueStatus const& q ) {
   record( Line( "programIntfTxQueueShapeRate" ).intf( intfStatus ).queue( q ) );
}

void RecordingQosBasicHelper::programIntfTxQueueGuaranteedBw( Qos::IntfStatus const& intfStatus,
                                                              Qos::TxQueueStatus const& q ) {
   record( Line( "programIntfTxQueueGuaranteedBw" ).intf( intfStatus ).queue( q ) );
}

void RecordingQosBasicHelper::programIntfTxQueueEcn( Qos::IntfStatus const& intfStatus,
                                                     Qos::TxQueueStatus const& q ) {
   record( Line( "programIntfTxQueueEcn" ).intf( intfStatus ).queue( q ) );
}

void RecordingQosBasicHelper::programIntfTxQueueNonEct( Qos::IntfStatus const& intfStatus,
                                                        Qos::TxQueueStatus const& q ) {
   record( Line( "programIntfTxQueueNonEct" ).intf( intfStatus ).queue( q ) );
}

void RecordingQosBasicHelper::programIntfTxQueueEcnDelayThreshold(
      Qos::IntfStatus const& intfStatus, Qos::TxQueue const& txQueueId, bool delayEcnEnabled,
      Qos::EcnDelayThreshold ecnDelayThreshold ) {
   record( Line( "programIntfTxQueueEcnDelayThreshold" )
                 .intf( intfStatus )
                 .queue( txQueueId )
                 .flag( "delayEcnEnabled", delayEcnEnabled )
                 .num( "ecnDelayThreshold", ecnDelayThreshold.microseconds ) );
}

bool RecordingQosBasicHelper::programIntfTxQueueEcnCount( Mirel::IntfId const& intfId,
                                                          Qos::TxQueueId txQueueId, bool enable ) {
   record( Line( "programIntfTxQueueEcnCount" )
                 .intf( intfId )
                 .num( "txQueueId", txQueueId )
                 .flag( "enable", enable ) );
   return ecnCountAnswer_;
}

void RecordingQosBasicHelper::programIntfTxQueueWred( Qos::IntfStatus const& intfStatus,
                                                      Qos::TxQueueStatus const& q ) {
   record( Line( "programIntfTxQueueWred" ).intf( intfStatus ).queue( q ) );
}

void RecordingQosBasicHelper::programIntfTxQueueDropThresholdForDp(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& q, Qos::DropPrecedence dp ) {
   record( Line( "programIntfTxQueueDropThresholdForDp" )
                 .intf( intfStatus )
                 .queue( q )
                 .num( "dp", dp ) );
}

void RecordingQosBasicHelper::programIntfTxQueueDropThresholdDefaults(
      Qos::IntfStatus const& intfStatus, Qos::TxQueueStatus const& q ) {
   record( Line( "programIntfTxQueueDropThresholdDefaults" ).intf( intfStatus ).queue( q ) );
}

void RecordingQosBasicHelper::programIntfTxQueueDefaults( Qos::IntfStatus const& intfStatus,
                                                          Qos::TxQueueStatus const& q ) {
   record( Line( "programIntfTxQueueDefaults" ).intf( intfStatus ).queue( q ) );
}

void RecordingQosBasicHelper::programDscpMap( Zub::Name const& mapName ) {
   record( Line( "programDscpMap" ).name( "mapName", mapName ) );
}

void RecordingQosBasicHelper::deleteDscpMap( Zub::Name const& mapName ) {
   record( Line( "deleteDscpMap" ).name( "mapName", mapName ) );
}

void RecordingQosBasicHelper::programIntfToDscpRewriteMap( Qos::IntfStatus const& intfStatus ) {
   record( Line( "programIntfToDscpRewriteMap" ).intf( intfStatus ) );
}

void RecordingQosBasicHelper::updateTcToDscpMapping( Zub::Name const& mapName,
                                                     Qos::TrafficClass tc ) {
   record( Line( "updateTcToDscpMapping" ).name( "mapName", mapName ).num( "tc", tc ) );
}

void RecordingQosBasicHelper::handleServicePolicyDP1Status() {
   record( Line( "handleServicePolicyDP1Status" ) );
}

void RecordingQosBasicHelper::addCosToTcProfile( Zub::Name const& profileName ) {
   record( Line( "addCosToTcProfile" ).name( "profileName", profileName ) );
}

void RecordingQosBasicHelper::removeCosToTcProfile( Zub::Name const& profileName ) {
   record( Line( "removeCosToTcProfile" ).name( "profileName", profileName ) );
}

void RecordingQosBasicHelper::handleIntfToCosToTcProfile( Mirel::IntfId const& intfId,
                                                          bool restoration ) {
   record( Line( "handleIntfToCosToTcProfile" ).intf( intfId ).flag( "restoration", restoration ) );
}

void RecordingQosBasicHelper::updateCosToTcProfileMapping( Zub::Name const& profileName,
                                                           Qos::Cos cos ) {
   record( Line( "updateCosToTcProfileMapping" )
                 .name( "profileName", profileName )
                 .num( "cos", cos ) );
}

}  // namespace NevQosTest
