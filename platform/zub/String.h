// Immutable, reference-counted text and interned names.
#pragma once

#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Zub {

// Immutable text whose copies share one buffer. The empty string holds no buffer.
class String {
 public:
   using const_iterator = char const*;

   String() noexcept = default;
   String( char const* s ) : String( s, s ? std::strlen( s ) : 0 ) {}
   String( char const* s, std::size_t len );
   String( std::string_view s ) : String( s.data(), s.size() ) {}
   String( std::string const& s ) : String( s.data(), s.size() ) {}
   String( String const& o ) noexcept;
   String( String&& o ) noexcept;
   String& operator=( String o ) noexcept;
   ~String();

   char const* charPtr() const noexcept { return rep_ ? rep_->text : ""; }
   std::size_t size() const noexcept { return rep_ ? rep_->size : 0; }
   bool empty() const noexcept { return size() == 0; }
   std::string_view view() const noexcept { return { charPtr(), size() }; }
   std::string stdString() const { return std::string( view() ); }
   const_iterator begin() const noexcept { return charPtr(); }
   const_iterator end() const noexcept { return charPtr() + size(); }
   char operator[]( std::size_t i ) const noexcept { return charPtr()[ i ]; }

   String operator+( String const& o ) const;
   String& operator+=( String const& o );
   bool operator==( String const& o ) const noexcept;
   bool operator==( char const* o ) const noexcept { return view() == std::string_view( o ); }
   std::strong_ordering operator<=>( String const& o ) const noexcept {
      return view() <=> o.view();
   }

   // Part of the text from `pos`, at most `len` characters.
   String substr( std::size_t pos, std::size_t len = std::string_view::npos ) const;
   // First position of `what` at or after `start`, or -1.
   int pos( String const& what, std::size_t start = 0 ) const noexcept;
   int pos( char c, std::size_t start = 0 ) const noexcept;
   // Last position of `c`, or -1.
   int lastPosOf( char c ) const noexcept;

   // The runtime's string hash: 32-bit FNV-1a, and 0 for the empty string.
   std::uint32_t hash() const noexcept;

   // True when both share one buffer; interned names rely on it.
   bool sameBuffer( String const& o ) const noexcept { return rep_ == o.rep_; }

 private:
   // In the header, so that reading a text (every comparison of names) is inline.
   struct Rep {
      std::uint32_t refs;
      std::uint32_t hash;
      std::size_t size;
      char text[ 1 ];  // size + 1 bytes, NUL-terminated

      static Rep* make( char const* s, std::size_t len );
   };
   explicit String( Rep* rep ) noexcept : rep_( rep ) {}
   Rep* rep_ = nullptr;
};

std::uint32_t stringHash( std::string_view s ) noexcept;
std::ostream& operator<<( std::ostream& os, String const& s );

// A short interned name. Equal names share one buffer, so equality is a pointer test, a copy
// only counts a reference, and the hash is cached in the text. An unset name is the empty name.
class Name {
 public:
   Name() noexcept = default;
   Name( char const* s ) : Name( std::string_view( s ? s : "" ) ) {}
   Name( std::string_view s );
   Name( std::string const& s ) : Name( std::string_view( s ) ) {}
   Name( String const& s ) : Name( s.view() ) {}

   String const& str() const noexcept { return text_; }
   char const* charPtr() const noexcept { return text_.charPtr(); }
   std::string_view view() const noexcept { return text_.view(); }
   bool empty() const noexcept { return text_.empty(); }
   std::uint32_t hash() const noexcept { return text_.hash(); }

   bool operator==( Name const& o ) const noexcept { return text_.sameBuffer( o.text_ ); }
   bool operator==( char const* o ) const noexcept { return view() == std::string_view( o ); }
   std::strong_ordering operator<=>( Name const& o ) const noexcept {
      if( *this == o ) return std::strong_ordering::equal;
      return view() <=> o.view();
   }

 private:
   String text_;
};

std::ostream& operator<<( std::ostream& os, Name const& n );

}  // namespace Zub
