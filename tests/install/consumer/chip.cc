// A driver's test reusing the reference chip's TCAM through the installed headers and library.
#include <NevQos/sim/chip/Tcam.h>

#include <cstdio>

int main() {
   Sim::Tcam tcam( 16, 2 );
   if( tcam.rangeCheckers() != 2 ) return 1;
   std::printf( "installed reference chip works\n" );
   return 0;
}
