#include "NevQos/sim/recording/AsyncResultMirror.h"

namespace Sim {

AsyncResultMirror::AsyncResultMirror( Zub::Ptr< Nev::NevAsyncBaseHelper > const& inner,
                                      Nev::NevAsyncBaseHelper* outer )
    : inner_( inner.ptr() ), outer_( outer ) {
   notifierIs( Zub::Ptr< Nev::NevAsyncBaseHelper const >( inner.ptr() ) );
}

void AsyncResultMirror::onAsyncOperationResult() {
   Nev::AsyncOperationResult const result = inner_->asyncOperationResult();
   if( result == Nev::AsyncOperationResult() ) return;
   inner_->asyncOperationResultIs( Nev::AsyncOperationResult() );
   if( heard_ ) heard_( result );
   outer_->asyncOperationResultIs( result );
}

}  // namespace Sim
