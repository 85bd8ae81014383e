// Builds against the installed headers and library and exercises one entity and the event loop.
#include <NevQos/NevQos.h>

#include <cstdio>

int main() {
   auto loop = Zub::ActivityManager::create( Zub::ActivityManager::TimeSource::simulated );
   Zub::activityManagerIs( loop );
   auto dir = Zub::make< Zub::Dir >( Zub::Name( "config" ) );
   dir->entityPtrIs( Zub::Name( "a" ), Zub::make< Zub::Dir >( Zub::Name( "a" ) ) );
   if( dir->entityPtrSize() != 1 ) return 1;
   std::printf( "installed engine works\n" );
   Zub::activityManagerIs( nullptr );
   return 0;
}
