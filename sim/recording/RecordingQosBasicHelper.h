// The recording basic QoS helper: a decorator that stands between the basic QoS engine and any
// basic helper (by default the reference chip), forwards every operation to it, and records each
// programming call as a Sim::ChipCall of helper "basic". The read-side questions (trustMode,
// guaranteedBwIsValid, shapeRateIsValid) are forwarded unrecorded. See CallRecorder.h for the
// record's text, the counting mode and the scripted answers, and RecordingQosAclHelper.h for the
// family.
//
// Base-class state. The engine reads the helper's inputs and writes nothing of its own into it;
// a chip reports a failure by lowering the feature's record in qosSliceHwStatus, an entity the
// decorator and the wrapped helper share (the inputs are the wrapped helper's). The
// asyncTcamOperationsSupported capability is copied when the decorator is made, and an
// asynchronous result the wrapped helper writes is moved into the decorator's at once.
#pragma once

#include "NevQos/helpers/QosBasicHelper.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/sim/recording/AsyncResultMirror.h"
#include "NevQos/sim/recording/CallRecorder.h"

namespace Sim {

class RecordingQosBasicHelper : public NevHelper::QosBasicHelper, public CallRecorder {
 public:
   // `clock` stamps the calls; null stamps 0.
   RecordingQosBasicHelper( Zub::Ptr< NevHelper::QosBasicHelper > inner,
                            Zub::Ptr< Kesh::TimerWheel > clock );
   ~RecordingQosBasicHelper() override;

   NevHelper::QosBasicHelper& inner() const { return *inner_; }

   // ---- The helper contract, forwarded
   Qos::TrustMode trustMode( Qos::IntfStatus const* intfStatus ) override;
   bool guaranteedBwIsValid( Qos::GuaranteedBw const& guaranteedBw ) override;
   bool shapeRateIsValid( Qos::ShapeRate const& shapeRate ) override;
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
   Zub::Ptr< NevHelper::QosBasicHelper > inner_;
   Zub::Ptr< AsyncResultMirror > mirror_;
};

}  // namespace Sim
