// A chip for tests of basic QoS: a basic helper that records every driver call it receives, in
// order, as one text line, and fails the calls the test tells it to.
//
// Line format. The operation's name, then one `field=value` per argument, in argument order,
// separated by single blanks:
//
//    programCosToTcMap cos=3
//    programIntfTxQueueEcn intf=Ethernet1 txQueue=uc2
//    programIntfTxQueueEcnDelayThreshold intf=Ethernet1 txQueue=uc2 delayEcnEnabled=true
//       ecnDelayThreshold=500                                            (one line in the record)
//    handleIntfToCosToTcProfile intf=Ethernet1 restoration=true
//
// An interface status shows as its interface (intf=), a queue status or queue as "uc<id>" or
// "mc<id>" (txQueue=); numbers in decimal, bools as true/false, names as they are.
//
// Failures. A chip that runs out of a resource lowers the hwProgrammingStatus of the feature's
// record in the slice's status while the call runs: failIs( op, feature ) makes every later
// call of `op` do that to the record of `feature`, until failDel( op ).
// programIntfTxQueueEcnCount reports by its result instead: ecnCountAnswerIs( false ). Naming
// an operation that does not exist throws std::invalid_argument, so a misspelt name cannot pass
// unnoticed. Every other call succeeds; none stops the process as the base's would.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "NevQos/helpers/QosBasicHelper.h"

namespace NevQosTest {

class RecordingQosBasicHelper : public NevHelper::QosBasicHelper {
 public:
   RecordingQosBasicHelper( Zub::Ptr< Qos::Status const > qosStatus,
                            Zub::Ptr< Qos::HwStatus > qosHwStatus,
                            Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus );

   // ---- The record

   std::vector< std::string > const& calls() const { return calls_; }
   void clearCalls() { calls_.clear(); }
   // The lines that begin with `prefix`, in order. A bare operation name matches that operation
   // only, not one whose name merely starts with it.
   std::vector< std::string > callsMatching( std::string_view prefix ) const;
   // All lines, each ended by a line break: readable in a failed comparison.
   std::string callsText() const;

   // ---- Failures

   void failIs( std::string_view op, Qos::FeatureName feature );
   void failDel( std::string_view op );
   void ecnCountAnswerIs( bool answer ) { ecnCountAnswer_ = answer; }

   // ---- The operations, recorded

   void initializationComplete() override;
   void handleEthPhyIntfStatusActive( Mirel::IntfId const& intfId ) override;
   void hwInit() override;
   void programCosToTcMap( Qos::Cos cos ) override;
   void programDscpToTcMap( Qos::Dscp dscp ) override;
   void programDscpToDpMap( Qos::Dscp dscp ) override;
   void programExpToTcMap( Qos::Exp exp ) override;
   void programTcToCosMap( Qos::TrafficClass tc ) override;
   void programTcToDscpMap( Qos::TrafficClass tc ) override;
   void programTcToExpMap( Qos::TrafficClass tc ) override;
   void programCosRewriteEnabled() override;
   void programDscpRewriteEnabled() override;
   void programTcToUcTxQueueMap( Qos::TrafficClass tc ) override;
   void programTcToMcTxQueueMap( Qos::TrafficClass tc ) override;
   void programGlobalEcn() override;
   void programIntfTrustModeCos( Qos::IntfStatus const& intfStatus ) override;
   void programIntfTrustModeDscp( Qos::IntfStatus const& intfStatus ) override;
   void programIntfTrustModeUntrusted( Qos::IntfStatus const& intfStatus ) override;
   void programIntfDefaultCos( Qos::IntfStatus const& intfStatus ) override;
   void programIntfDefaultDscp( Qos::IntfStatus const& intfStatus ) override;
   void programIntfShapeRate( Qos::IntfStatus const& intfStatus ) override;
   void programIntfDefaults( Qos::IntfStatus const& intfStatus ) override;
   void handleQosVerify() override;
   void programIntfTxQueuePriority( Qos::IntfStatus const& intfStatus,
                                    Qos::TxQueueStatus const& txQueueStatus ) override;
   void programIntfTxQueueShapeRate( Qos::IntfStatus const& intfStatus,
                                     Qos::TxQueueStatus const& txQueueStatus ) override;
   void programIntfTxQueueGuaranteedBw( Qos::IntfStatus const& intfStatus,
                                        Qos::TxQueueStatus const& txQueueStatus ) override;
   void programIntfTxQueueEcn( Qos::IntfStatus const& intfStatus,
                               Qos::TxQueueStatus const& txQueueStatus ) override;
   void programIntfTxQueueNonEct( Qos::IntfStatus const& intfStatus,
                                  Qos::TxQueueStatus const& txQueueStatus ) override;
   void programIntfTxQueueEcnDelayThreshold( Qos::IntfStatus const& intfStatus,
                                             Qos::TxQueue const& txQueueId, bool delayEcnEnabled,
                                             Qos::EcnDelayThreshold ecnDelayThreshold ) override;
   bool programIntfTxQueueEcnCount( Mirel::IntfId const& intfId, Qos::TxQueueId txQueueId,
                                    bool enable ) override;
   void programIntfTxQueueWred( Qos::IntfStatus const& intfStatus,
                                Qos::TxQueueStatus const& txQueueStatus ) override;
   void programIntfTxQueueDropThresholdForDp( Qos::IntfStatus const& intfStatus,
                                              Qos::TxQueueStatus const& txQueueStatus,
                                              Qos::DropPrecedence dp ) override;
   void programIntfTxQueueDropThresholdDefaults( Qos::IntfStatus const& intfStatus,
                                                 Qos::TxQueueStatus const& txQueueStatus ) override;
   void programIntfTxQueueDefaults( Qos::IntfStatus const& intfStatus,
                                    Qos::TxQueueStatus const& txQueueStatus ) override;
   void programDscpMap( Zub::Name const& mapName ) override;
   void deleteDscpMap( Zub::Name const& mapName ) override;
   void programIntfToDscpRewriteMap( Qos::IntfStatus const& intfStatus ) override;
   void updateTcToDscpMapping( Zub::Name const& mapName, Qos::TrafficClass tc ) override;
   void handleServicePolicyDP1Status() override;
   void addCosToTcProfile( Zub::Name const& profileName ) override;
   void removeCosToTcProfile( Zub::Name const& profileName ) override;
   void handleIntfToCosToTcProfile( Mirel::IntfId const& intfId, bool restoration ) override;
   void updateCosToTcProfileMapping( Zub::Name const& profileName, Qos::Cos cos ) override;

 private:
   class Line;
   // Records the line, then fails the call if the test asked for it.
   void record( Line const& line );

   std::vector< std::string > calls_;
   // The feature each failing operation lowers.
   std::map< std::string, Qos::FeatureName, std::less<> > failures_;
   bool ecnCountAnswer_ = true;
};

}  // namespace NevQosTest
