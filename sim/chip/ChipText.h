// How the reference chip, the recording decorators, the scenario reader and the runner's report
// write values as text: anything with an operator<<, masks in hexadecimal, interfaces by name with
// a LAG member as "Ethernet4@Port-Channel10", policy maps as "gold(qos,input)", ACL keys as
// "acl-1(ip)", queues as "UC3".
#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>

#include "NevQos/platform/entities/QosTypes.h"
#include "NevQos/platform/mirel/IntfId.h"
#include "NevQos/platform/nev/AclKey.h"
#include "NevQos/platform/nev/ModIdPortQueueKey.h"
#include "NevQos/types/QosPolicyMapKey.h"

namespace Sim {

template< class T >
std::string textOf( T const& v ) {
   std::ostringstream os;
   os << v;
   return os.str();
}

std::string hexText( unsigned v );

// How the JSON report writes a value given as text: as the text, or as the number (decimal or
// 0x hexadecimal), the flag ("true", "false") or the rate (a number and its unit, "20000kbps")
// that the text reads as.
enum class JsonKind : std::uint8_t { text, number, flag, rate };

// A value's text with its kind. It is the text everywhere else (the text report, the
// expectations, the comparison of calls), where only the JSON writer asks for the kind.
struct TypedText : std::string {
   using std::string::string;
   TypedText( std::string text, JsonKind k = JsonKind::text )
       : std::string( std::move( text ) ), kind( k ) {}
   JsonKind kind = JsonKind::text;
};

// A value as the recorders give it: numbers and flags with their kind, anything else as text.
template< class T >
TypedText argOf( T const& v ) {
   if constexpr( std::is_same_v< T, bool > ) {
      return { v ? "true" : "false", JsonKind::flag };
   } else if constexpr( std::is_integral_v< T > ) {
      // Through a wider type: one byte would print as a character.
      return { textOf( +v ), JsonKind::number };
   } else if constexpr( std::is_class_v< T > && std::is_convertible_v< T, unsigned long long > ) {
      // A number of a value type (a COS, a traffic class), which prints as its number.
      return { textOf( v ), JsonKind::number };
   } else {
      return { textOf( v ), JsonKind::text };
   }
}
// A mask: written in hexadecimal, a number in JSON.
inline TypedText hexArg( unsigned v ) {
   return { hexText( v ), JsonKind::number };
}
// A rate and its unit: "20000kbps".
template< class Value, class Unit >
TypedText rateArg( Value const& value, Unit const& unit ) {
   return { textOf( value ) + textOf( unit ), JsonKind::rate };
}
std::string intfName( Mirel::IntfId intf );
std::string intfText( Qos::IntfPairKey const& intf );
// A CPU queue of a port as "modId/port/queue".
std::string portQueueText( Nev::ModIdPortQueueKey const& key );
std::string boolText( bool b );
std::string aclKeyText( Nev::AclKey const& aclKey );
// "qos", "control-plane", "pdp".
char const* mapTypeText( Qos::MapType type );
// "gold(qos,input)", or "gold(qos,input,uplinks)" in ACL group "uplinks".
std::string pmapText( Nev::QosPolicyMapKey const& k );
// "UC3", "MC0".
std::string queueText( Qos::TxQueue const& queue );

}  // namespace Sim
