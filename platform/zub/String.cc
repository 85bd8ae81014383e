#include "NevQos/platform/zub/String.h"

#include <cstdlib>
#include <new>
#include <ostream>
#include <unordered_map>

namespace Zub {

String::Rep* String::Rep::make( char const* s, std::size_t len ) {
   void* mem = ::operator new( offsetof( Rep, text ) + len + 1 );
   Rep* r = static_cast< Rep* >( mem );
   r->refs = 1;
   r->size = len;
   std::memcpy( r->text, s, len );
   r->text[ len ] = '\0';
   r->hash = stringHash( { r->text, len } );
   return r;
}

std::uint32_t stringHash( std::string_view s ) noexcept {
   if( s.empty() ) return 0;
   std::uint32_t h = 2166136261u;
   for( unsigned char c : s ) {
      h ^= c;
      h *= 16777619u;
   }
   return h;
}

String::String( char const* s, std::size_t len ) {
   if( len ) rep_ = Rep::make( s, len );
}

String::String( String const& o ) noexcept : rep_( o.rep_ ) {
   if( rep_ ) ++rep_->refs;
}

String::String( String&& o ) noexcept : rep_( o.rep_ ) {
   o.rep_ = nullptr;
}

String& String::operator=( String o ) noexcept {
   std::swap( rep_, o.rep_ );
   return *this;
}

String::~String() {
   if( rep_ && --rep_->refs == 0 ) ::operator delete( rep_ );
}

String String::operator+( String const& o ) const {
   if( o.empty() ) return *this;
   if( empty() ) return o;
   std::string joined;
   joined.reserve( size() + o.size() );
   joined.append( view() ).append( o.view() );
   return String( joined );
}

String& String::operator+=( String const& o ) {
   *this = *this + o;
   return *this;
}

bool String::operator==( String const& o ) const noexcept {
   return rep_ == o.rep_ || view() == o.view();
}

String String::substr( std::size_t pos, std::size_t len ) const {
   if( pos >= size() ) return String();
   return String( view().substr( pos, len ) );
}

int String::pos( String const& what, std::size_t start ) const noexcept {
   auto p = view().find( what.view(), start );
   return p == std::string_view::npos ? -1 : static_cast< int >( p );
}

int String::pos( char c, std::size_t start ) const noexcept {
   auto p = view().find( c, start );
   return p == std::string_view::npos ? -1 : static_cast< int >( p );
}

int String::lastPosOf( char c ) const noexcept {
   auto p = view().rfind( c );
   return p == std::string_view::npos ? -1 : static_cast< int >( p );
}

std::uint32_t String::hash() const noexcept {
   return rep_ ? rep_->hash : 0;
}

std::ostream& operator<<( std::ostream& os, String const& s ) {
   return os << s.view();
}

namespace {

// The intern table lives to the end of the process: names are configuration identifiers, few
// and long-lived, and a name may be compared from static destructors.
std::unordered_map< std::string_view, String >& internTable() {
   static auto* table = new std::unordered_map< std::string_view, String >();
   return *table;
}

}  // namespace

Name::Name( std::string_view s ) {
   if( s.empty() ) return;
   auto& table = internTable();
   auto it = table.find( s );
   if( it == table.end() ) {
      String text( s );
      it = table.emplace( text.view(), text ).first;
   }
   text_ = it->second;
}

std::ostream& operator<<( std::ostream& os, Name const& n ) {
   return os << n.view();
}

}  // namespace Zub
