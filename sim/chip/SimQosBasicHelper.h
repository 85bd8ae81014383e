// The reference chip's basic QoS helper: global map tables written slot by slot from the base's
// read side, per-port trust, defaults, shaping and map bindings, and per-queue scheduling. ECN,
// WRED and tail-drop settings live in finite pools of profiles that queues with equal settings
// share; a queue that needs a new profile when none is free keeps what it had, the chip logs the
// shortage and lowers the feature's record in Qos::SliceHwStatus. ECN counters are a finite pool
// too. An operationError fault on a programming operation fails the call the same way: the chip
// keeps what it held, lowers the record of the operation's feature and logs. The calls are
// recorded by a decorator of sim/recording, not here.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "NevQos/helpers/QosBasicHelper.h"
#include "NevQos/platform/entities/EthPhyIntfStatus.h"
#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/platform/zub/Log.h"
#include "NevQos/sim/chip/ChipConfig.h"
#include "NevQos/sim/chip/ChipFaults.h"
#include "NevQos/sim/chip/ProfilePool.h"
#include "NevQos/sim/chip/SimQosAclHelper.h"

namespace Sim {

// The global tables as last programmed; a slot never programmed holds its type's sentinel.
struct BasicGlobalTables {
   std::array< Qos::TrafficClass, Qos::Cos::invalid > cosToTc{};
   std::array< Qos::TrafficClass, Qos::Dscp::invalid > dscpToTc{};
   std::array< Qos::DropPrecedence, Qos::Dscp::invalid > dscpToDp{};
   std::array< Qos::TrafficClass, Qos::Exp::invalid > expToTc{};
   std::array< Qos::Cos, Qos::TrafficClass::invalid > tcToCos{};
   std::array< Qos::Dscp, Qos::TrafficClass::invalid > tcToDscp{};
   std::array< Qos::Exp, Qos::TrafficClass::invalid > tcToExp{};
   std::array< Qos::TxQueueId, Qos::TrafficClass::invalid > tcToUcTxQueue{};
   std::array< Qos::TxQueueId, Qos::TrafficClass::invalid > tcToMcTxQueue{};
   bool cosRewriteEnabled = false;
   bool dscpRewriteEnabled = false;
   Qos::EcnStatus ecn;
};

// A named table bound per port: a DSCP rewrite map, by traffic class, or a COS-to-TC profile,
// by COS. A slot the configuration leaves out holds the global map's value.
using DscpRewriteTable = std::array< Qos::Dscp, Qos::TrafficClass::invalid >;
using CosToTcTable = std::array< Qos::TrafficClass, Qos::Cos::invalid >;

struct BasicPortSettings {
   Qos::TrustMode trustMode = Qos::trustCos_;
   Qos::Cos defaultCos;
   Qos::Dscp defaultDscp;
   // Rate 0: not shaped.
   Qos::ShapeRate shapeRate;
   // Empty: the global map.
   Zub::Name dscpRewriteMap;
   Zub::Name cosToTcProfile;
};

struct BasicQueueKey {
   Mirel::IntfId intf;
   Qos::TxQueue queue;
   bool operator==( BasicQueueKey const& ) const = default;
   std::strong_ordering operator<=>( BasicQueueKey const& ) const = default;
};

// What the hardware holds for one queue.
struct BasicQueueSettings {
   Qos::TxQueuePriority priority = Qos::txQueuePriorityRoundRobin_;
   Qos::ShapeRate shapeRate;
   // The guarantee programmed (rate GuaranteedBw::invalidRate: none), and its rate in the
   // hardware's units: kbps for kbps and percent, pps for pps. A percent is taken of the port's
   // link speed, and is 0 while the speed is unknown.
   Qos::GuaranteedBw guaranteedBw;
   std::uint64_t guaranteedRate = 0;
   // A guarantee was asked for and held back: its unit differs from the shape rate's.
   bool guaranteedBwUnitMismatch = false;
   Qos::EcnStatus ecn;
   Qos::NonEctStatus nonEct;
   bool delayEcnEnabled = false;
   Qos::EcnDelayThreshold ecnDelayThreshold;
   Qos::WredStatus wred;
   // Bytes by drop precedence; one left out is the chip's default.
   std::map< std::uint32_t, std::uint32_t > dropThresholds;
};

class SimQosBasicHelper : public NevHelper::QosBasicHelper {
 public:
   // `ethPhyIntfStatusDir` gives the link speeds that percent guarantees are taken of; without
   // it (null) such a guarantee programs 0.
   SimQosBasicHelper( ChipConfig config, Zub::Ptr< Qos::Status const > qosStatus,
                      Zub::Ptr< Qos::HwStatus > qosHwStatus,
                      Zub::Ptr< Qos::SliceHwStatus > qosSliceHwStatus,
                      Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > ethPhyIntfStatusDir );
   ~SimQosBasicHelper() override;

   // ---- The chip's state, for a report

   ChipConfig const& config() const { return config_; }
   BasicGlobalTables const& globals() const { return globals_; }
   // Ports the engine has programmed, with what they hold now.
   std::map< Mirel::IntfId, BasicPortSettings > const& ports() const { return ports_; }
   // Queues the engine has programmed, with what they hold now; programIntfTxQueueDefaults
   // takes one out.
   std::map< BasicQueueKey, BasicQueueSettings > const& queues() const { return queues_; }
   std::map< Zub::Name, DscpRewriteTable > const& dscpRewriteMaps() const {
      return dscpRewriteMaps_;
   }
   std::map< Zub::Name, CosToTcTable > const& cosToTcProfiles() const { return cosToTcProfiles_; }
   // The profile pools; a user is a queue by its name (queueName).
   ProfilePool const& ecnProfiles() const { return ecnProfiles_; }
   ProfilePool const& wredProfiles() const { return wredProfiles_; }
   ProfilePool const& dropThresholdProfiles() const { return dropThresholdProfiles_; }
   // The queues counting ECN-marked packets, by port and queue id; at most
   // config().ecnQueueCounters.
   std::set< std::pair< Mirel::IntfId, std::uint32_t > > const& ecnCounters() const {
      return ecnCounters_;
   }
   // A queue as the pools and the log name it: "Ethernet1 UC3", "Ethernet1 MC0".
   static std::string queueName( Mirel::IntfId intf, Qos::TxQueue const& queue );

   // The chip's faults, shared with its other helpers (SimQosAclHelper::faults()). Until this
   // is called the chip holds its configuration's faults alone, on a clock that stays at 0.
   void faultsIs( std::shared_ptr< ChipFaults > faults ) { faults_ = std::move( faults ); }

   // ---- The helper contract
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
   BasicPortSettings portDefaults() const;
   BasicPortSettings& port( Mirel::IntfId intf );
   BasicQueueSettings& queue( Mirel::IntfId intf, Qos::TxQueue const& txQueue );
   // Lowers the feature's record with the message, and logs it.
   void fail( Qos::FeatureName feature, Zub::LogHandle& handle,
              std::vector< Zub::String > const& args );
   // Whether an operationError fault fails this call of `op`. A failed call programs nothing:
   // the chip lowers the record of `feature`, where the setting has one, and logs `handle`.
   bool faulted( std::string const& op, std::optional< Qos::FeatureName > feature,
                 Zub::LogHandle& handle, std::vector< Zub::String > const& args );
   // The same for a setting that TCAM entries hold, on one port or (intf null) on all: the
   // generic QOS_HW_RESOURCE_FULL with what is programmed and where.
   bool tcamFaulted( std::string const& op, std::optional< Qos::FeatureName > feature,
                     std::string const& what,
                     std::optional< Mirel::IntfId > const& intf = std::nullopt );
   // The same for a setting of one queue, with the feature's queue handle.
   bool queueFaulted( std::string const& op, Qos::FeatureName feature, Zub::LogHandle& handle,
                      Mirel::IntfId intf, Qos::TxQueue const& txQueue );
   // Moves the queue's ECN profile to `wanted`; false, with the feature failed, when no profile
   // is free.
   bool ecnProfileIs( Mirel::IntfId intf, Qos::TxQueue const& txQueue,
                      BasicQueueSettings const& wanted, Qos::FeatureName feature );
   // Programs the queue's guarantee from its status unless the units of guarantee and shape
   // rate differ; the mismatch is logged when `asked` or when it withdraws a guarantee.
   void guaranteeIs( Mirel::IntfId intf, Qos::TxQueueStatus const& txQueueStatus,
                     BasicQueueSettings& queue, bool asked );
   std::uint64_t guaranteedRateOf( Mirel::IntfId intf, Qos::GuaranteedBw const& bw ) const;
   // The DSCP of `tc` in a named map, or the global map's when the map leaves it out.
   Qos::Dscp dscpRewriteSlot( Zub::Name const& mapName, Qos::TrafficClass tc ) const;
   Qos::TrafficClass cosToTcSlot( Zub::Name const& profileName, Qos::Cos cos ) const;
   // Writes a whole named table from configuration; false when configuration has none.
   bool loadDscpRewriteMap( Zub::Name const& mapName );
   bool loadCosToTcProfile( Zub::Name const& profileName );

   ChipConfig config_;
   Zub::Ptr< Interface::AllEthPhyIntfStatusDir const > ethPhyIntfStatusDir_;
   BasicGlobalTables globals_;
   std::map< Mirel::IntfId, BasicPortSettings > ports_;
   std::map< BasicQueueKey, BasicQueueSettings > queues_;
   std::map< Zub::Name, DscpRewriteTable > dscpRewriteMaps_;
   std::map< Zub::Name, CosToTcTable > cosToTcProfiles_;
   ProfilePool ecnProfiles_;
   ProfilePool wredProfiles_;
   ProfilePool dropThresholdProfiles_;
   std::set< std::pair< Mirel::IntfId, std::uint32_t > > ecnCounters_;
   std::shared_ptr< ChipFaults > faults_;
   // Queues whose reset has had its first programIntfTxQueueDefaults call: the engine makes two,
   // the first under the ECN record and the second under the WRED record.
   std::set< BasicQueueKey > resetsHalfDone_;
};

}  // namespace Sim
