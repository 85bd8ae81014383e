#include "NevQos/sim/recording/CallRecorder.h"

#include <utility>

namespace Sim {

std::string callText( ChipCall const& call ) {
   std::string out = call.helper == "acl" ? "" : call.helper + " ";
   out += call.op;
   for( auto const& [ name, value ] : call.args )
      out += " " + name + "=" + value;
   return out;
}

CallRecorder::CallRecorder( char const* helper, Operations const& operations,
                            Zub::Ptr< Kesh::TimerWheel > clock )
    : helper_( helper ), operations_( operations ), clock_( std::move( clock ) ) {}

CallRecorder::~CallRecorder() = default;

void CallRecorder::record( char const* op, Args args ) {
   ChipCall call{ clock_ ? clock_->now() : 0.0, op, std::move( args ), helper_ };
   if( log_ ) {
      log_->append( std::move( call ) );
   } else {
      own_.push_back( std::move( call ) );
   }
}

std::vector< std::string > CallRecorder::callsMatching( std::string_view prefix ) const {
   std::vector< std::string > out;
   for( ChipCall const& call : own_ ) {
      std::string line = callText( call );
      // Matched from the operation on: the helper's name before it is not asked for.
      std::string_view const text =
            std::string_view( line ).substr( call.helper == "acl" ? 0 : call.helper.size() + 1 );
      if( !text.starts_with( prefix ) ) continue;
      // A bare name must end where the operation's name ends.
      if( !prefix.empty() && text.size() > prefix.size() &&
          prefix.find( ' ' ) == std::string_view::npos && text[ prefix.size() ] != ' ' ) {
         continue;
      }
      out.push_back( std::move( line ) );
   }
   return out;
}

std::string CallRecorder::callsText() const {
   std::string out;
   for( ChipCall const& call : own_ )
      out += callText( call ) + "\n";
   return out;
}

std::uint64_t CallRecorder::callCount( std::string_view op ) const {
   std::uint64_t n = 0;
   for( auto const& [ name, count ] : counts_ ) {
      if( op == name ) n += count;
   }
   return n;
}

std::map< std::string, std::uint64_t > CallRecorder::callCounts() const {
   std::map< std::string, std::uint64_t > out;
   for( auto const& [ name, count ] : counts_ )
      out[ name ] += count;
   return out;
}

void CallRecorder::answerDel( std::string_view op ) {
   if( !operations_.contains( op ) ) {
      throw std::invalid_argument( helper_ + " helper has no operation " + std::string( op ) );
   }
   if( auto const it = answers_.find( op ); it != answers_.end() ) answers_.erase( it );
}

void CallRecorder::forwardEnq( std::string_view op ) {
   if( !operations_.contains( op ) ) {
      throw std::invalid_argument( helper_ + " helper has no operation " + std::string( op ) );
   }
   auto found = answers_.find( op );
   if( found == answers_.end() ) found = answers_.emplace( std::string( op ), Answers{} ).first;
   found->second.queued.emplace_back();
}

CallRecorder::Answers& CallRecorder::checked( std::string_view op, std::type_info const& type ) {
   auto const it = operations_.find( op );
   if( it == operations_.end() ) {
      throw std::invalid_argument( helper_ + " helper has no operation " + std::string( op ) );
   }
   // An operation that answers nothing takes an action.
   std::type_index const wanted =
         it->second == typeid( void ) ? std::type_index( typeid( Action ) ) : it->second;
   if( wanted != std::type_index( type ) ) {
      throw std::invalid_argument( "operation " + std::string( op ) +
                                   " gives no answer of that type" );
   }
   auto found = answers_.find( op );
   if( found == answers_.end() ) found = answers_.emplace( std::string( op ), Answers{} ).first;
   return found->second;
}

}  // namespace Sim
