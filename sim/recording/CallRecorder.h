// What the recording decorators share: the call record they append to, the count by operation
// they keep instead when counting, and the scripted answers a test puts in the wrapped helper's
// place. Each decorator derives from it beside its helper class; see RecordingQosAclHelper.h.
#pragma once

#include <any>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>
#include <vector>

#include "NevQos/platform/kesh/TimerWheel.h"
#include "NevQos/sim/recording/CallLog.h"
#include "NevQos/sim/recording/ChipCall.h"

namespace Sim {

class CallRecorder {
 public:
   using Args = std::vector< std::pair< std::string, TypedText > >;
   // The operations of a helper, each with the type of its answer (void: it answers nothing).
   using Operations = std::map< std::string, std::type_index, std::less<> >;

   // ---- The record

   // The decorator's own record: empty while it records into a shared log.
   std::vector< ChipCall > const& calls() const { return own_; }
   // Records into `log` from now on, so that decorators sharing one log keep the order of their
   // calls between them; null records into the decorator's own.
   void callLogIs( CallLog* log ) { log_ = log; }
   void callsForget() { own_.clear(); }
   // The lines (callText) of the own record's calls, in order, whose text from the operation on
   // begins with `prefix`. A bare operation name matches that operation only, not one whose name
   // merely starts with it. The empty prefix matches every call.
   std::vector< std::string > callsMatching( std::string_view prefix ) const;
   // All lines, each ended by a line break: readable in a failed comparison.
   std::string callsText() const;

   // ---- Counting: counts by operation take the place of records, for figures that must not
   // pay for the argument texts. Every operation counts, also those never recorded.

   void countingIs( bool counting ) { counting_ = counting; }
   bool counting() const { return counting_; }
   std::uint64_t callCount( std::string_view op ) const;
   // The counts by operation, in name order; an operation never called is left out.
   std::map< std::string, std::uint64_t > callCounts() const;
   void callCountsForget() { counts_.clear(); }

   // ---- Scripted answers. An operation answers, in this order: the next answer queued for it,
   // then its standing answer, then the wrapped helper. A scripted answer takes the wrapped
   // helper's place: the call is recorded but not forwarded. An operation that answers nothing
   // takes an Action instead, run in the wrapped helper's place (a failure a chip would report
   // through the status, say). Naming an operation the helper does not have, or an answer of
   // another type, throws std::invalid_argument.

   template< class T >
   void answerIs( std::string_view op, T const& answer ) {
      checked( op, typeid( T ) ).standing = answer;
   }
   template< class T >
   void answerEnq( std::string_view op, T const& answer ) {
      checked( op, typeid( T ) ).queued.push_back( answer );
   }
   // Queues a turn of the wrapped helper: the next call of `op` still queued behind this one
   // reaches it, so that scripted and real answers can alternate.
   void forwardEnq( std::string_view op );
   using Action = std::function< void() >;
   void actionIs( std::string_view op, Action const& action ) { answerIs( op, action ); }
   void actionEnq( std::string_view op, Action const& action ) { answerEnq( op, action ); }
   // Drops the standing and the queued answers of `op`: the wrapped helper answers again.
   void answerDel( std::string_view op );

 protected:
   CallRecorder( char const* helper, Operations const& operations,
                 Zub::Ptr< Kesh::TimerWheel > clock );
   ~CallRecorder();

   // Called first by every operation: counts it when counting, and tells whether to record it.
   bool taking( char const* op ) {
      if( !counting_ ) return true;
      ++counts_[ op ];
      return false;
   }
   void record( char const* op, Args args );
   // The scripted answer of `op` now, if any.
   template< class T >
   std::optional< T > scripted( char const* op ) {
      if( answers_.empty() ) return std::nullopt;
      auto const it = answers_.find( op );
      if( it == answers_.end() ) return std::nullopt;
      Answers& a = it->second;
      if( !a.queued.empty() ) {
         std::any const front = std::move( a.queued.front() );
         a.queued.pop_front();
         // An empty answer is a turn of the wrapped helper.
         if( !front.has_value() ) return std::nullopt;
         return std::any_cast< T >( front );
      }
      if( a.standing.has_value() ) return std::any_cast< T >( a.standing );
      return std::nullopt;
   }

   // Runs the scripted action of `op`, if any, and tells whether it ran.
   bool acted( char const* op ) {
      auto const action = scripted< Action >( op );
      if( action && *action ) ( *action )();
      return action.has_value();
   }

 private:
   struct Answers {
      std::deque< std::any > queued;
      std::any standing;
   };
   Answers& checked( std::string_view op, std::type_info const& type );

   std::string helper_;
   Operations const& operations_;
   Zub::Ptr< Kesh::TimerWheel > clock_;
   std::vector< ChipCall > own_;
   CallLog* log_ = nullptr;
   bool counting_ = false;
   // By the operation's own name literal: counting costs no string.
   std::unordered_map< char const*, std::uint64_t > counts_;
   std::map< std::string, Answers, std::less<> > answers_;
};

}  // namespace Sim
