#include "NevQos/platform/nev/VerifyData.h"

#include <cstdlib>
#include <ostream>
#include <sstream>

#include "NevQos/platform/zub/Assert.h"

namespace Nev {

std::ostream& operator<<( std::ostream& os, VerifyOutput const& o ) {
   return os << o.function() << ": " << o.text();
}

void VerifyData::doVerify() {
   verifyRequestedIs( false );
   verifyIs( verify() + 1 );
}

void VerifyData::updateCliVerifyOutput( Zub::String const& function, Zub::String const& text ) {
   // Lines are numbered from a counter of our own, so that a line is never given the number of
   // one removed before it and the report keeps the order in which findings were raised.
   cliVerifyOutputIs( nextLine_++, VerifyOutput( text, Zub::String(), 0, function ) );
}

std::vector< Zub::String > VerifyData::cliVerifyOutputTexts() const {
   std::vector< Zub::String > texts;
   texts.reserve( cliVerifyOutputSize() );
   for( auto const& line : cliVerifyOutput() )
      texts.push_back( line.text() );
   return texts;
}

void reportVerifyFailure( VerifyData* verifyData, Zub::String const& text, char const* file,
                          std::uint32_t line, char const* function ) {
   std::ostringstream report;
   report << text;
   if( std::getenv( "SIMULATION_VMID" ) ) {
      if( verifyData ) {
         verifyData->verifyOutputIs( VerifyOutput( Zub::String( report.str() ), Zub::String( file ),
                                                   line, Zub::String( function ) ) );
      }
      ::Zub::assertFail( "0", file, static_cast< int >( line ), function );
   }
   if( verifyData ) verifyData->updateCliVerifyOutput( Zub::String( function ), text );
}

}  // namespace Nev
