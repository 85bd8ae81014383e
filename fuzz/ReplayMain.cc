// Runs every file of the given directories through a fuzz target's entry point once, in name
// order, so that ordinary builds and their sanitizers check the corpus and the reproducers of
// fixed crashes without libFuzzer. Names starting with '.' are skipped (placeholders).
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const* data, std::size_t size );

int main( int argc, char** argv ) {
   std::size_t inputs = 0;
   for( int i = 1; i < argc; ++i ) {
      std::filesystem::path const dir( argv[ i ] );
      if( !std::filesystem::is_directory( dir ) ) {
         std::fprintf( stderr, "%s: not a directory\n", argv[ i ] );
         return 2;
      }
      std::vector< std::filesystem::path > files;
      for( auto const& entry : std::filesystem::directory_iterator( dir ) ) {
         if( entry.is_regular_file() && !entry.path().filename().string().starts_with( '.' ) ) {
            files.push_back( entry.path() );
         }
      }
      std::sort( files.begin(), files.end() );
      for( auto const& file : files ) {
         // Named before it runs: a crash is then reported after the name of its input.
         std::printf( "%s\n", file.c_str() );
         std::fflush( stdout );
         std::ifstream in( file, std::ios::binary );
         std::vector< char > const bytes( ( std::istreambuf_iterator< char >( in ) ),
                                          std::istreambuf_iterator< char >() );
         LLVMFuzzerTestOneInput( reinterpret_cast< std::uint8_t const* >( bytes.data() ),
                                 bytes.size() );
         ++inputs;
      }
   }
   std::printf( "replayed %zu inputs\n", inputs );
   // No input at all means a wrong directory, not a clean run.
   return inputs == 0 ? 1 : 0;
}
