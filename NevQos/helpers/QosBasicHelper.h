// The basic QoS helper: the boundary between the basic QoS state machines (global maps,
// interfaces, queues, ECN counters) and a chip. A chip driver subclasses it and overrides the
// programming operations.
//
// The base gives two things. Read-side computations that merge the configured Qos::Status with
// the chip's defaults in Qos::HwStatus, so that every driver gets one answer to what a COS, a
// DSCP or a traffic class means on a port. And default bodies of the programming operations: a
// few do nothing, the others are unimplemented and stop the process with their message, unless
// the environment variable NEV_NOOP_AGENT exists (whatever its value, read on every call).
//
// A driver that fails to program a feature lowers hwProgrammingStatus of the feature's record in
// Qos::SliceHwStatus while the call runs; programIntfTxQueueEcnCount alone reports through its
// result instead.
#pragma once

#include <cstdint>

#include "NevQos/platform/entities/HwStatus.h"
#include "NevQos/platform/entities/IntfStatus.h"
#include "NevQos/platform/entities/QosStatus.h"
#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/entities/QueueSettings.h"
#include "NevQos/platform/entities/SliceHwStatus.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/nev/NevBaseHelper.h"
#include "NevQos/platform/zub/Entity.h"
#include "NevQos/platform/zub/String.h"

namespace NevHelper {

class QosBasicHelper : public Nev::NevAsyncBaseHelper {
 public:
   QosBasicHelper( Zub::Ptr< Qos::Status const > qosStatus, Zub::Ptr< Qos::HwStatus > qosHwStatus,
                   Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus );

   Zub::Ptr< Qos::Status const > const& qosStatus() const { return qosStatus_; }
   Zub::Ptr< Qos::HwStatus > const& qosHwStatus() const { return qosHwStatus_; }
   Zub::Ptr< Qos::SliceHwStatus > const& qosSliceHwStatus() const { return qosSliceHwStatus_; }

   // ---- Read side. A null interface status reads the chip's defaults.

   // By the trust mode: the traffic class of a packet that brings no usable marking.
   Qos::TrafficClass defaultTc( Qos::IntfStatus const* intfStatus );
   virtual Qos::TrustMode trustMode( Qos::IntfStatus const* intfStatus );
   Qos::Cos defaultCos( Qos::IntfStatus const* intfStatus ) const;
   Qos::TrafficClass defaultCosToTc( Qos::IntfStatus const* intfStatus ) const;
   Qos::TrafficClass cosToTc( Qos::Cos cos ) const;
   Qos::Dscp defaultDscp( Qos::IntfStatus const* intfStatus ) const;
   Qos::TrafficClass defaultDscpToTc( Qos::IntfStatus const* intfStatus ) const;
   Qos::TrafficClass dscpToTc( Qos::Dscp dscp ) const;
   Qos::DropPrecedence dscpToDp( Qos::Dscp dscp ) const;
   Qos::TrafficClass expToTc( Qos::Exp exp ) const;
   Qos::Cos tcToCos( Qos::TrafficClass tc ) const;
   Qos::Dscp tcToDscp( Qos::TrafficClass tc ) const;
   Qos::Exp tcToExp( Qos::TrafficClass tc ) const;
   Qos::TxQueueId tcToUcTxQueue( Qos::TrafficClass tc ) const;
   Qos::TxQueueId tcToMcTxQueue( Qos::TrafficClass tc ) const;
   bool cosRewriteEnabled() const;
   bool dscpRewriteEnabled() const;
   // Unit names for messages: "kbps", "pps", "percent", else "unknown unit".
   static Zub::String guaranteedBwUnitToStr( Qos::GuaranteedBwUnit unit );
   static Zub::String shapeRateUnitToStr( Qos::ShapeRateUnit unit );
   // Within the chip's limits.
   virtual bool guaranteedBwIsValid( Qos::GuaranteedBw const& guaranteedBw );
   virtual bool shapeRateIsValid( Qos::ShapeRate const& shapeRate );

   // ---- Programming, in slot order

   virtual void initializationComplete();
   virtual void handleEthPhyIntfStatusActive( Mirel::IntfId const& intfId );
   virtual void hwInit();
   virtual void programCosToTcMap( Qos::Cos cos );
   virtual void programDscpToTcMap( Qos::Dscp dscp );
   virtual void programDscpToDpMap( Qos::Dscp dscp );
   virtual void programExpToTcMap( Qos::Exp exp );
   virtual void programTcToCosMap( Qos::TrafficClass tc );
   virtual void programTcToDscpMap( Qos::TrafficClass tc );
   virtual void programTcToExpMap( Qos::TrafficClass tc );
   virtual void programCosRewriteEnabled();
   virtual void programDscpRewriteEnabled();
   virtual void programTcToUcTxQueueMap( Qos::TrafficClass tc );
   virtual void programTcToMcTxQueueMap( Qos::TrafficClass tc );
   virtual void programGlobalEcn();
   virtual void programIntfTrustModeCos( Qos::IntfStatus const& intfStatus );
   virtual void programIntfTrustModeDscp( Qos::IntfStatus const& intfStatus );
   virtual void programIntfTrustModeUntrusted( Qos::IntfStatus const& intfStatus );
   virtual void programIntfDefaultCos( Qos::IntfStatus const& intfStatus );
   virtual void programIntfDefaultDscp( Qos::IntfStatus const& intfStatus );
   virtual void programIntfShapeRate( Qos::IntfStatus const& intfStatus );
   virtual void programIntfDefaults( Qos::IntfStatus const& intfStatus );
   virtual void handleQosVerify();
   virtual void programIntfTxQueuePriority( Qos::IntfStatus const& intfStatus,
                                            Qos::TxQueueStatus const& txQueueStatus );
   virtual void programIntfTxQueueShapeRate( Qos::IntfStatus const& intfStatus,
                                             Qos::TxQueueStatus const& txQueueStatus );
   virtual void programIntfTxQueueGuaranteedBw( Qos::IntfStatus const& intfStatus,
                                                Qos::TxQueueStatus const& txQueueStatus );
   virtual void programIntfTxQueueEcn( Qos::IntfStatus const& intfStatus,
                                       Qos::TxQueueStatus const& txQueueStatus );
   virtual void programIntfTxQueueNonEct( Qos::IntfStatus const& intfStatus,
                                          Qos::TxQueueStatus const& txQueueStatus );
   virtual void programIntfTxQueueEcnDelayThreshold( Qos::IntfStatus const& intfStatus,
                                                     Qos::TxQueue const& txQueueId,
                                                     bool delayEcnEnabled,
                                                     Qos::EcnDelayThreshold ecnDelayThreshold );
   // False when the chip has no counter left.
   virtual bool programIntfTxQueueEcnCount( Mirel::IntfId const& intfId, Qos::TxQueueId txQueueId,
                                            bool enable );
   virtual void programIntfTxQueueWred( Qos::IntfStatus const& intfStatus,
                                        Qos::TxQueueStatus const& txQueueStatus );
   virtual void programIntfTxQueueDropThresholdForDp( Qos::IntfStatus const& intfStatus,
                                                      Qos::TxQueueStatus const& txQueueStatus,
                                                      Qos::DropPrecedence dp );
   virtual void programIntfTxQueueDropThresholdDefaults( Qos::IntfStatus const& intfStatus,
                                                         Qos::TxQueueStatus const& txQueueStatus );
   virtual void programIntfTxQueueDefaults( Qos::IntfStatus const& intfStatus,
                                            Qos::TxQueueStatus const& txQueueStatus );
   virtual void programDscpMap( Zub::Name const& mapName );
   virtual void deleteDscpMap( Zub::Name const& mapName );
   virtual void programIntfToDscpRewriteMap( Qos::IntfStatus const& intfStatus );
   virtual void updateTcToDscpMapping( Zub::Name const& mapName, Qos::TrafficClass tc );
   virtual void handleServicePolicyDP1Status();
   virtual void addCosToTcProfile( Zub::Name const& profileName );
   virtual void removeCosToTcProfile( Zub::Name const& profileName );
   // `restoration`: the assignment is programmed again after a restart, not made anew.
   virtual void handleIntfToCosToTcProfile( Mirel::IntfId const& intfId, bool restoration );
   virtual void updateCosToTcProfileMapping( Zub::Name const& profileName, Qos::Cos cos );

 protected:
   // The default body of an operation a driver must write.
   void unimplemented( char const* message ) const;

 private:
   Zub::Ptr< Qos::Status const > qosStatus_;
   Zub::Ptr< Qos::HwStatus > qosHwStatus_;
   Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus_;
};

}  // namespace NevHelper
