// Carries the asynchronous results a wrapped helper writes into the decorator the engine
// watches, so that the asynchronous road runs through a decorator as it runs without one.
#pragma once

#include <functional>

#include "NevQos/platform/nev/NevBaseHelper.h"

namespace Sim {

class AsyncResultMirror : public Nev::NevAsyncBaseHelper::Notifiee {
 public:
   // Watches `inner`; `outer` owns this mirror and outlives it.
   AsyncResultMirror( Zub::Ptr< Nev::NevAsyncBaseHelper > const& inner,
                      Nev::NevAsyncBaseHelper* outer );
   // The wrapped helper's result is taken back to "none" before the engine hears of it, so that
   // the same result written again (two operations completing in one moment) is heard again.
   void onAsyncOperationResult() override;
   // Called with each result carried, before the outer helper hears of it.
   void heardIs( std::function< void( Nev::AsyncOperationResult const& ) > heard ) {
      heard_ = std::move( heard );
   }

 private:
   Nev::NevAsyncBaseHelper* inner_;
   Nev::NevAsyncBaseHelper* outer_;
   std::function< void( Nev::AsyncOperationResult const& ) > heard_;
};

}  // namespace Sim
