#include "bench/support/ChildRun.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "bench/support/BenchAgent.h"

namespace Bench {

ChildRun childRun( std::string const& program, std::vector< std::string > const& args,
                   std::filesystem::path const& output ) {
   // Built before the fork: the child only execs.
   std::vector< char* > argv;
   std::string name = std::filesystem::path( program ).filename().string();
   std::vector< std::string > owned( args );
   argv.push_back( name.data() );
   for( std::string& arg : owned )
      argv.push_back( arg.data() );
   argv.push_back( nullptr );
   auto const start = std::chrono::steady_clock::now();
   pid_t const pid = fork();
   if( pid < 0 ) fail( "fork failed" );
   if( pid == 0 ) {
      if( !std::freopen( output.c_str(), "w", stdout ) ) std::_Exit( 126 );
      execv( program.c_str(), argv.data() );
      std::_Exit( 127 );
   }
   int status = 0;
   rusage usage{};
   if( wait4( pid, &status, 0, &usage ) != pid ) fail( "wait4 failed" );
   std::chrono::duration< double > const took = std::chrono::steady_clock::now() - start;
   if( !WIFEXITED( status ) || WEXITSTATUS( status ) != 0 ) {
      std::string line = name;
      for( std::string const& arg : args )
         line += " " + arg;
      fail( line + " did not end with 0" );
   }
   // ru_maxrss is in kilobytes on Linux.
   return ChildRun{ took.count(), 1024.0 * static_cast< double >( usage.ru_maxrss ) };
}

std::filesystem::path temporaryDirectory( std::string const& prefix ) {
   std::string tmpl = ( std::filesystem::temp_directory_path() / ( prefix + "-XXXXXX" ) ).string();
   if( !mkdtemp( tmpl.data() ) ) fail( "cannot make a temporary directory" );
   return std::filesystem::path( tmpl );
}

}  // namespace Bench
