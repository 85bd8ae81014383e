#include "NevQos/platform/entities/QosTypes.h"

#include <ostream>

#include "NevQos/platform/zub/Format.h"

namespace Qos {

namespace {

constexpr ValueText::Member mapTypeNames[] = {
   { mapControlPlane_, "mapControlPlane" },
   { mapQos_, "mapQos" },
   { mapPdp_, "mapPdp" },
};

constexpr ValueText::Member directionNames[] = {
   { directionInput_, "input" },
   { directionOutput_, "output" },
};

constexpr ValueText::Member classMapMatchOptionNames[] = {
   { matchOptionNone, "matchOptionNone" },
   { matchOptionIpAcl, "matchOptionIpAcl" },
   { matchOptionIpv6Acl, "matchOptionIpv6Acl" },
   { matchOptionVlan, "matchOptionVlan" },
   { matchOptionDscpEcn, "matchOptionDscpEcn" },
   { matchOptionMplsTrafficClass, "matchOptionMplsTrafficClass" },
   { matchOptionMac, "matchOptionMac" },
   { matchOptionBuiltIn, "matchOptionBuiltIn" },
   { matchOptionCos, "matchOptionCos" },
   { matchOptionVlanCos, "matchOptionVlanCos" },
};

constexpr ValueText::Member trustModeNames[] = {
   { trustCos_, "trustCos" },
   { trustDscp_, "trustDscp" },
   { untrusted_, "untrusted" },
   { trustModeInvalid_, "trustModeInvalid" },
};

constexpr ValueText::Member policyMapHwPrgmStatusNames[] = {
   { hwPrgmStatusInProgress_, "hwPrgmStatusInProgress" },
   { hwPrgmStatusFail_, "hwPrgmStatusFail" },
   { hwPrgmStatusSuccess_, "hwPrgmStatusSuccess" },
};

constexpr ValueText::Member hwProgrammingStatusNames[] = {
   { hwProgrammingFailed_, "hwProgrammingFailed" },
   { hwProgrammingSucceeded_, "hwProgrammingSucceeded" },
};

constexpr ValueText::Member featureNameNames[] = {
   { featureDscpRewriteEnable_, "featureDscpRewriteEnable" },
   { featureCosRewriteEnable_, "featureCosRewriteEnable" },
   { featureTrustMode_, "featureTrustMode" },
   { featureEcnStatus_, "featureEcnStatus" },
   { featureEcnDelayThreshold_, "featureEcnDelayThreshold" },
   { featureWred_, "featureWred" },
   { featureGlobalMaps_, "featureGlobalMaps" },
   { featureDefaultCos_, "featureDefaultCos" },
   { featureDefaultDscp_, "featureDefaultDscp" },
   { featureEcnQueueCounters_, "featureEcnQueueCounters" },
   { featureDropThresholds_, "featureDropThresholds" },
};

constexpr ValueText::Member txQueueTypeNames[] = {
   { unicastQueue_, "unicastQueue" },
   { multicastQueue_, "multicastQueue" },
};

constexpr ValueText::Member actionTypeNames[] = {
   { actionNone_, "actionNone" },       { actionSetCos_, "actionSetCos" },
   { actionSetDscp_, "actionSetDscp" }, { actionSetTc_, "actionSetTc" },
   { actionDrop_, "actionDrop" },       { actionSetDropPrecedence_, "actionSetDropPrecedence" },
};

constexpr ValueText::Member classMapCpTypeNames[] = {
   { cmapCpStatic_, "cmapCpStatic" },
   { cmapCpDynamic_, "cmapCpDynamic" },
};

}  // namespace

ENUM_TEXT_DEFINE( MapType, "Qos::MapType", mapTypeNames )
ENUM_TEXT_DEFINE( Direction, "Qos::Direction", directionNames )
ENUM_TEXT_DEFINE( ClassMapMatchOption, "Qos::ClassMapMatchOption", classMapMatchOptionNames )
ENUM_TEXT_DEFINE( TrustMode, "Qos::TrustMode", trustModeNames )
ENUM_TEXT_DEFINE( PolicyMapHwPrgmStatus, "Qos::PolicyMapHwPrgmStatus", policyMapHwPrgmStatusNames )
ENUM_TEXT_DEFINE( HwProgrammingStatus, "Qos::HwProgrammingStatus", hwProgrammingStatusNames )
ENUM_TEXT_DEFINE( FeatureName, "Qos::FeatureName", featureNameNames )
ENUM_TEXT_DEFINE( TxQueueType, "Qos::TxQueueType", txQueueTypeNames )
ENUM_TEXT_DEFINE( ActionType, "Qos::ActionType", actionTypeNames )
ENUM_TEXT_DEFINE( ClassMapCpType, "Qos::ClassMapCpType", classMapCpTypeNames )

// ---- IntfPairKey

IntfPairKey::IntfPairKey( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::uint32_t IntfPairKey::hash() const noexcept {
   return Zub::ByteHash().addLe( intfId_.value(), 8 ).addLe( lagIntfId_.value(), 8 ).result();
}

Zub::String valueToStrep( IntfPairKey const& k ) {
   return Zub::String( "Value('Qos::IntfPairKey', ** {'intfId': " ) + valueToStrep( k.intfId() ) +
          ", 'lagIntfId': " + valueToStrep( k.lagIntfId() ) + "})";
}

std::ostream& operator<<( std::ostream& os, IntfPairKey const& k ) {
   return os << valueToStrep( k );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, IntfPairKey& out ) {
   Mirel::IntfId intfId, lagIntfId;
   Zub::needString( it, end, "Value('Qos::IntfPairKey', ** {" );
   Zub::deserializeField( it, end, "intfId", intfId, true );
   Zub::deserializeField( it, end, "lagIntfId", lagIntfId, false );
   Zub::needString( it, end, "})" );
   out = IntfPairKey( intfId, lagIntfId );
}

// ---- TxQueue

TxQueue::TxQueue( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::uint32_t TxQueue::hash() const noexcept {
   return Zub::ByteHash().addLe( id_.value(), 1 ).addLe( type_, 4 ).result();
}

Zub::String valueToStrep( TxQueue const& q ) {
   return Zub::String( "Value('Qos::TxQueue', ** {'id': " ) + valueToStrep( q.id() ) +
          ", 'type': " + valueToStrep( q.type() ) + "})";
}

std::ostream& operator<<( std::ostream& os, TxQueue const& q ) {
   return os << valueToStrep( q );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, TxQueue& out ) {
   TxQueueId id;
   TxQueueType type = unicastQueue_;
   Zub::needString( it, end, "Value('Qos::TxQueue', ** {" );
   Zub::deserializeField( it, end, "id", id, true );
   Zub::deserializeField( it, end, "type", type, false );
   Zub::needString( it, end, "})" );
   out = TxQueue( id, type );
}

// ---- ServicePolicyKey

ServicePolicyKey::ServicePolicyKey( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::strong_ordering ServicePolicyKey::operator<=>( ServicePolicyKey const& o ) const noexcept {
   if( auto c = ValueText::compareEnum( type_, o.type_ ); c != 0 ) return c;
   if( auto c = ValueText::compareEnum( direction_, o.direction_ ); c != 0 ) return c;
   return pmapName_ <=> o.pmapName_;
}

Zub::String valueToStrep( ServicePolicyKey const& k ) {
   return Zub::String( "Value('Qos::ServicePolicyKey', ** {'type': " ) + valueToStrep( k.type() ) +
          ", 'direction': " + valueToStrep( k.direction() ) +
          ", 'pmapName': " + Zub::valueToStrep( k.pmapName() ) + "})";
}

std::ostream& operator<<( std::ostream& os, ServicePolicyKey const& k ) {
   return os << valueToStrep( k );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, ServicePolicyKey& out ) {
   MapType type = mapControlPlane_;
   Direction direction = directionInput_;
   Zub::Name pmapName;
   Zub::needString( it, end, "Value('Qos::ServicePolicyKey', ** {" );
   Zub::deserializeField( it, end, "type", type, true );
   Zub::deserializeField( it, end, "direction", direction, false );
   Zub::deserializeField( it, end, "pmapName", pmapName, false );
   Zub::needString( it, end, "})" );
   out = ServicePolicyKey( type, direction, pmapName );
}

// ---- PolicyMapHwStatusKey

PolicyMapHwStatusKey::PolicyMapHwStatusKey( char const* begin, char const* end ) {
   Zub::StrepIter it = begin;
   deserializeAttr( it, end, *this );
   ValueText::needEnd( it, end );
}

std::strong_ordering PolicyMapHwStatusKey::operator<=>(
      PolicyMapHwStatusKey const& o ) const noexcept {
   if( auto c = ValueText::compareEnum( direction_, o.direction_ ); c != 0 ) return c;
   return name_ <=> o.name_;
}

Zub::String valueToStrep( PolicyMapHwStatusKey const& k ) {
   return Zub::String( "Value('Qos::PolicyMapHwStatusKey', ** {'direction': " ) +
          valueToStrep( k.direction() ) + ", 'name': " + Zub::valueToStrep( k.name() ) + "})";
}

std::ostream& operator<<( std::ostream& os, PolicyMapHwStatusKey const& k ) {
   return os << valueToStrep( k );
}

void deserializeAttr( Zub::StrepIter& it, Zub::StrepIter end, PolicyMapHwStatusKey& out ) {
   Direction direction = directionInput_;
   Zub::Name name;
   Zub::needString( it, end, "Value('Qos::PolicyMapHwStatusKey', ** {" );
   Zub::deserializeField( it, end, "direction", direction, true );
   Zub::deserializeField( it, end, "name", name, false );
   Zub::needString( it, end, "})" );
   out = PolicyMapHwStatusKey( direction, name );
}

}  // namespace Qos
