#include "NevQos/platform/glarn/GlarnMap.h"

namespace Glarn {

Zub::TraceHandle glarnTrace( "Glarn" );

void refuseWrite() {
   throw Pelto::NoPermissionException( "write to read-only Glarn table" );
}

void refuseRemove() {
   throw Pelto::NoPermissionException( "remove to read-only Glarn table" );
}

void refuseCleanup() {
   throw Pelto::NoPermissionException( "cleanup to read-only Glarn table" );
}

void refuseValidateFiles() {
   throw Pelto::NoPermissionException( "validateFiles to read-only Glarn table" );
}

void refuseValidate() {
   throw Pelto::NoPermissionException( "validate to read-only Glarn table" );
}

void traceCorruptionDetected( Zub::String const& path, char const* message ) {
   ZUB_TRACE( glarnTrace, 1, "GlarnMap::corruptionDetected() " << path << " " << message );
}

void traceDetach( Zub::String const& path ) {
   ZUB_TRACE( glarnTrace, 1, "GlarnMap::detach() " << path );
}

void traceCollectionReady( bool ready, bool notifying ) {
   ZUB_TRACE( glarnTrace, 5,
              "GlarnMap::collectionReadyIs() ready:" << ready << " notifying:" << notifying );
}

}  // namespace Glarn
