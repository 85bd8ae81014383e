// The scalar types, enumerations and small keys of the Qos namespace that the QoS logic compares
// against. The rate and burst units live in QosUnits.h, included here.
#pragma once

#include <compare>
#include <cstdint>
#include <iosfwd>
#include <ostream>
#include <utility>

#include "NevQos/platform/entities/QosUnits.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/zub/Exception.h"
#include "NevQos/platform/zub/Strep.h"
#include "NevQos/platform/zub/String.h"
#include "NevQos/platform/zub/ValueText.h"

namespace Qos {

// ---- Enumerations

enum MapType : std::uint32_t {
   mapControlPlane_ = 0,
   mapQos_ = 1,
   mapPdp_ = 2,
};
ENUM_TEXT_DECLARE( MapType );

// Texts "input" and "output". Input is also the direction of default keys and of the service
// policy the system creates itself.
enum Direction : std::uint32_t {
   directionInput_ = 0,
   directionOutput_ = 1,
};
ENUM_TEXT_DECLARE( Direction );

enum ClassMapMatchOption : std::uint32_t {
   matchOptionNone = 0,
   matchOptionIpAcl = 1,
   matchOptionIpv6Acl = 2,
   matchOptionVlan = 3,
   matchOptionDscpEcn = 4,
   matchOptionMplsTrafficClass = 5,
   matchOptionMac = 6,
   matchOptionBuiltIn = 7,
   matchOptionCos = 8,
   matchOptionVlanCos = 9,
};
ENUM_TEXT_DECLARE( ClassMapMatchOption );

// trustModeInvalid_ is programmed like trust COS, but no default traffic class exists for it.
enum TrustMode : std::uint32_t {
   trustCos_ = 0,
   trustDscp_ = 1,
   untrusted_ = 2,
   trustModeInvalid_ = 3,
};
ENUM_TEXT_DECLARE( TrustMode );

// The programming state of a policy map as the command line shows it.
enum PolicyMapHwPrgmStatus : std::uint32_t {
   hwPrgmStatusInProgress_ = 0,
   hwPrgmStatusFail_ = 1,
   hwPrgmStatusSuccess_ = 2,
};
ENUM_TEXT_DECLARE( PolicyMapHwPrgmStatus );

// The result of programming one feature. Success is written before the driver call, and the
// driver lowers it when it fails.
enum HwProgrammingStatus : std::uint32_t {
   hwProgrammingFailed_ = 0,
   hwProgrammingSucceeded_ = 1,
};
ENUM_TEXT_DECLARE( HwProgrammingStatus );

// Selects one record of the per-feature programming status of a slice.
enum FeatureName : std::uint32_t {
   featureDscpRewriteEnable_ = 0,
   featureCosRewriteEnable_ = 1,
   featureTrustMode_ = 2,
   featureEcnStatus_ = 3,  // ECN, global and per queue, and non-ECT
   featureEcnDelayThreshold_ = 4,
   featureWred_ = 5,
   featureGlobalMaps_ = 6,  // the COS, DSCP, EXP and traffic-class maps
   featureDefaultCos_ = 7,
   featureDefaultDscp_ = 8,
   featureEcnQueueCounters_ = 11,
   featureDropThresholds_ = 12,
};
ENUM_TEXT_DECLARE( FeatureName );

enum TxQueueType : std::uint32_t {
   unicastQueue_ = 0,
   multicastQueue_ = 1,
};
ENUM_TEXT_DECLARE( TxQueueType );

// What a class action does to the packets of its class. Other values may be carried; nothing
// here acts on them.
enum ActionType : std::uint32_t {
   actionNone_ = 0,
   actionSetCos_ = 2,
   actionSetDscp_ = 3,
   actionSetTc_ = 4,
   actionDrop_ = 5,
   actionSetDropPrecedence_ = 6,
};
ENUM_TEXT_DECLARE( ActionType );

// Control-plane class maps: static ones come with the system and have their own CPU queue;
// dynamic ones are made by the operator and get a CPU queue allocated.
enum ClassMapCpType : std::uint32_t {
   cmapCpStatic_ = 0,
   cmapCpDynamic_ = 1,
};
ENUM_TEXT_DECLARE( ClassMapCpType );

// ---- Numbers with an invalid sentinel

// A one-byte number from `min` to `max`, or the sentinel `invalid` (max + 1) that marks an
// unconfigured map slot. A default-constructed number is the sentinel, so that map arrays start
// unconfigured. It converts to its byte for comparisons and indexing; building one from anything
// outside [min, invalid] throws Zub::RangeException.
template< class Traits >
class SentinelNumber {
 public:
   using ValueType = std::uint8_t;
   static constexpr ValueType min = 0;
   static constexpr ValueType invalid = Traits::invalid;
   static constexpr ValueType max = invalid - 1;

   constexpr SentinelNumber() noexcept = default;
   constexpr SentinelNumber( long long v ) : value_( checked( v ) ) {}

   constexpr ValueType value() const noexcept { return value_; }
   constexpr operator ValueType() const noexcept { return value_; }
   constexpr bool isValid() const noexcept { return value_ != invalid; }
   // Ambiguous between "is zero" and "is unconfigured": ask isValid() or compare instead.
   bool operator!() const = delete;

   friend Zub::String valueToStrep( SentinelNumber n ) {
      return Zub::valueToStrep( unsigned( n.value_ ) );
   }
   friend std::ostream& operator<<( std::ostream& os, SentinelNumber n ) {
      return os << unsigned( n.value_ );
   }
   friend void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, SentinelNumber& out ) {
      long long v = 0;
      Zub::deserializeAttr( it, end, v );
      out = SentinelNumber( v );
   }

 private:
   static constexpr ValueType checked( long long v ) {
      if( v < min || v > invalid ) {
         Zub::throwRangeException( Zub::String( Traits::name ) + "::value < " + Traits::name +
                                   "::min or > " + Traits::name + "::invalid not allowed" );
      }
      return static_cast< ValueType >( v );
   }
   ValueType value_ = invalid;
};

struct CosTraits {
   static constexpr char const* name = "Cos";
   static constexpr std::uint8_t invalid = 8;
};
struct DscpTraits {
   static constexpr char const* name = "Dscp";
   static constexpr std::uint8_t invalid = 64;
};
struct ExpTraits {
   static constexpr char const* name = "Exp";
   static constexpr std::uint8_t invalid = 8;
};
struct TrafficClassTraits {
   static constexpr char const* name = "TrafficClass";
   static constexpr std::uint8_t invalid = 16;
};
struct DropPrecedenceTraits {
   static constexpr char const* name = "DropPrecedence";
   static constexpr std::uint8_t invalid = 4;
};
struct TxQueueIdTraits {
   static constexpr char const* name = "TxQueueId";
   static constexpr std::uint8_t invalid = 16;
};

using Cos = SentinelNumber< CosTraits >;
using Dscp = SentinelNumber< DscpTraits >;
using Exp = SentinelNumber< ExpTraits >;
using TrafficClass = SentinelNumber< TrafficClassTraits >;
using DropPrecedence = SentinelNumber< DropPrecedenceTraits >;
using TxQueueId = SentinelNumber< TxQueueIdTraits >;

// The configured value of a map slot, or the chip's default where the slot holds the sentinel.
// `byDefault` is asked only then.
template< class Traits, class Default >
SentinelNumber< Traits > orDefault( SentinelNumber< Traits > configured, Default byDefault ) {
   return configured.isValid() ? configured : byDefault();
}

// ---- Keys

// An interface and, for a member of a port-channel, the port-channel it belongs to.
class IntfPairKey {
 public:
   IntfPairKey() noexcept = default;
   explicit IntfPairKey( Mirel::IntfId intfId, Mirel::IntfId lagIntfId = {} ) noexcept
       : intfId_( intfId ), lagIntfId_( lagIntfId ) {}
   // Reads the `Value(...)` form.
   IntfPairKey( char const* begin, char const* end );

   Mirel::IntfId intfId() const noexcept { return intfId_; }
   Mirel::IntfId lagIntfId() const noexcept { return lagIntfId_; }

   // The byte-wise hash over the eight bytes of intfId, then those of lagIntfId.
   std::uint32_t hash() const noexcept;

   bool operator==( IntfPairKey const& ) const noexcept = default;
   std::strong_ordering operator<=>( IntfPairKey const& ) const noexcept = default;
   bool operator!() const noexcept { return !intfId_ && !lagIntfId_; }

 private:
   Mirel::IntfId intfId_;
   Mirel::IntfId lagIntfId_;
};

Zub::String valueToStrep( IntfPairKey const& k );
std::ostream& operator<<( std::ostream& os, IntfPairKey const& k );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, IntfPairKey& out );

// One transmit queue of an interface.
class TxQueue {
 public:
   TxQueue() noexcept = default;
   TxQueue( TxQueueId id, TxQueueType type ) noexcept : id_( id ), type_( type ) {}
   TxQueue( char const* begin, char const* end );

   TxQueueId id() const noexcept { return id_; }
   TxQueueType type() const noexcept { return type_; }

   // The byte-wise hash over the queue id byte, then the four bytes of the type.
   std::uint32_t hash() const noexcept;

   bool operator==( TxQueue const& o ) const noexcept {
      return id_.value() == o.id_.value() && type_ == o.type_;
   }
   std::strong_ordering operator<=>( TxQueue const& o ) const noexcept {
      if( auto c = id_.value() <=> o.id_.value(); c != 0 ) return c;
      return ValueText::compareEnum( type_, o.type_ );
   }
   bool operator!() const noexcept { return *this == TxQueue(); }

 private:
   TxQueueId id_;
   TxQueueType type_ = unicastQueue_;
};

Zub::String valueToStrep( TxQueue const& q );
std::ostream& operator<<( std::ostream& os, TxQueue const& q );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, TxQueue& out );

// A service policy: a policy map of a type applied in a direction.
class ServicePolicyKey {
 public:
   ServicePolicyKey() noexcept = default;
   ServicePolicyKey( MapType type, Direction direction, Zub::Name pmapName ) noexcept
       : type_( type ), direction_( direction ), pmapName_( std::move( pmapName ) ) {}
   ServicePolicyKey( char const* begin, char const* end );

   MapType type() const noexcept { return type_; }
   Direction direction() const noexcept { return direction_; }
   Zub::Name const& pmapName() const noexcept { return pmapName_; }

   std::uint32_t hash() const noexcept {
      return pmapName_.hash() ^ ( std::uint32_t( type_ ) + 1 ) ^
             ( std::uint32_t( direction_ ) + 1 );
   }

   bool operator==( ServicePolicyKey const& ) const noexcept = default;
   std::strong_ordering operator<=>( ServicePolicyKey const& o ) const noexcept;
   bool operator!() const noexcept { return *this == ServicePolicyKey(); }

 private:
   MapType type_ = mapControlPlane_;
   Direction direction_ = directionInput_;
   Zub::Name pmapName_;
};

Zub::String valueToStrep( ServicePolicyKey const& k );
std::ostream& operator<<( std::ostream& os, ServicePolicyKey const& k );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, ServicePolicyKey& out );

// The key of a policy map's hardware status under its map type.
class PolicyMapHwStatusKey {
 public:
   PolicyMapHwStatusKey() noexcept = default;
   PolicyMapHwStatusKey( Direction direction, Zub::Name name ) noexcept
       : direction_( direction ), name_( std::move( name ) ) {}
   PolicyMapHwStatusKey( char const* begin, char const* end );

   Direction direction() const noexcept { return direction_; }
   Zub::Name const& name() const noexcept { return name_; }

   std::uint32_t hash() const noexcept {
      return name_.hash() ^ ( std::uint32_t( direction_ ) + 1 );
   }

   bool operator==( PolicyMapHwStatusKey const& ) const noexcept = default;
   std::strong_ordering operator<=>( PolicyMapHwStatusKey const& o ) const noexcept;
   bool operator!() const noexcept { return *this == PolicyMapHwStatusKey(); }

 private:
   Direction direction_ = directionInput_;
   Zub::Name name_;
};

Zub::String valueToStrep( PolicyMapHwStatusKey const& k );
std::ostream& operator<<( std::ostream& os, PolicyMapHwStatusKey const& k );
void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, PolicyMapHwStatusKey& out );

}  // namespace Qos
