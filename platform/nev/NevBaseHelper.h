// The roots of the hardware helpers that a chip driver subclasses. A helper is an entity, so a
// state machine watches its attributes with a reactor like any input.
#pragma once

#include "NevQos/platform/nev/AsyncOperation.h"
#include "NevQos/platform/nev/NevAssert.h"
#include "NevQos/platform/zub/Entity.h"

namespace Nev {

#define NEV_BASE_HELPER_ATTRS( X )                  \
   X( value, Priority, priority, unsigned int, 0u ) \
   X( value, Dirty, dirty, bool, false )

class NevBaseHelper : public Zub::Entity {
 public:
   explicit NevBaseHelper( Zub::Name const& name ) : Zub::Entity( name.str() ) {}
   ZUB_ENTITY_BODY( NevBaseHelper, Zub::Entity, NEV_BASE_HELPER_ATTRS )

   // Hands out the current priority and moves to the next one.
   unsigned int nextPriority() {
      unsigned int p = priority();
      priorityIs( p + 1 );
      return p;
   }
   // Writes `error` and a line end to standard error and fails an assertion.
   [[noreturn]] virtual void nevAssert( Zub::String const& error ) const {
      Nev::nevAssert( error );
   }
};

#define NEV_ASYNC_BASE_HELPER_ATTRS( X )                                            \
   X( value, AsyncOperationResult, asyncOperationResult, Nev::AsyncOperationResult, \
      Nev::AsyncOperationResult() )                                                 \
   X( value, AsyncTcamOperationsSupported, asyncTcamOperationsSupported, bool, false )

class NevAsyncBaseHelper : public NevBaseHelper {
 public:
   explicit NevAsyncBaseHelper( Zub::Name const& name ) : NevBaseHelper( name ) {}
   ZUB_ENTITY_BODY( NevAsyncBaseHelper, NevBaseHelper, NEV_ASYNC_BASE_HELPER_ATTRS )
};

}  // namespace Nev
