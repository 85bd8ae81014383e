// The bases of the top state machines.
//
// A top machine attaches its reactors in its constructor, without catch-up, and does no work
// there. The base then calls the virtual `handleInitialized()` once, on the first turn of the
// event loop after construction, so that the hosting agent can finish wiring the machine (its
// helper, its inputs) first. `handleInitialized()` performs the machine's start-up, including
// its own initial walk of the inputs, and ends with `initializedIs( true )`.
#pragma once

#include "NevQos/platform/nev/AsyncOperation.h"
#include "NevQos/platform/nev/NevAssert.h"
#include "NevQos/platform/zub/ActivityManager.h"
#include "NevQos/platform/zub/Clock.h"
#include "NevQos/platform/zub/Ptr.h"

namespace Nev {

class NevCommonSmData;

class NevBaseSm : public Zub::PtrInterface {
 public:
   Zub::FwkType fwkType() const override { return Zub::FwkType::stateMachine; }

   // Virtual operations, in slot order.
   virtual void handleInitialized() { initializedIs( true ); }
   virtual void initializedIs( bool i ) { initialized_ = i; }
   // Sets or clears the zombie mark; a machine with reactors extends this to forward the mark
   // to each reactor and child collection. With the mark already as asked it does nothing.
   virtual void zubDoZombieReactors( bool zombie );

   bool initialized() const { return initialized_; }
   Zub::Ptr< NevCommonSmData const > const& ncsd() const { return ncsd_; }
   // Writes `error` and a line end to standard error and fails an assertion.
   [[noreturn]] void nevAssert( Zub::String const& error ) const { Nev::nevAssert( error ); }

 protected:
   explicit NevBaseSm( Zub::Ptr< NevCommonSmData const > const& ncsd );
   ~NevBaseSm() override;

 private:
   class StartClock;
   Zub::Ptr< NevCommonSmData const > ncsd_;
   bool initialized_ = false;
   Zub::Ptr< StartClock > startClock_;
};

class NevAsyncBaseSm : public NevBaseSm {
 public:
   Zub::String const& error() const { return error_; }
   void errorIs( Zub::String const& e ) { error_ = e; }
   AsyncOperationState asyncState() const { return asyncState_; }
   void asyncStateIs( AsyncOperationState s ) { asyncState_ = s; }
   // The clocks are reactors on a Zub::Clock: set their timeMin to be called back.
   Zub::Ptr< Zub::Clock::NotifieeConst > tcamRequestClock() const;
   Zub::Seconds pendingOperationTimeout() const { return pendingOperationTimeout_; }
   void pendingOperationTimeoutIs( Zub::Seconds t ) { pendingOperationTimeout_ = t; }
   Zub::Ptr< Zub::Clock::NotifieeConst > pendingOperationTimeoutClock() const;

   // Virtual operations, in slot order after those of NevBaseSm.
   // Called when the driver reports the end of an operation.
   virtual void handleAsyncOperationResult() {}
   // Called when tcamRequestClock reaches its timeMin.
   virtual void processTcamRequestQueue() {}
   // Called when pendingOperationTimeoutClock reaches its timeMin.
   virtual void handlePendingOperationTimeout() {}
   virtual void tcamRequestClockDel();
   // Makes tcamRequestClock a reactor on `clock`.
   virtual void tcamRequestClockIs( Zub::Ptr< Zub::Clock > const& clock );
   virtual void pendingOperationTimeoutClockDel();
   virtual void pendingOperationTimeoutClockIs( Zub::Ptr< Zub::Clock > const& clock );
   void zubDoZombieReactors( bool zombie ) override;

 protected:
   explicit NevAsyncBaseSm( Zub::Ptr< NevCommonSmData const > const& ncsd );
   ~NevAsyncBaseSm() override;

 private:
   // A reactor on a clock that calls one handler of the machine.
   class HandlerClock;
   using Handler = void ( NevAsyncBaseSm::* )();
   static void clockIs( Zub::Ptr< HandlerClock >& slot, NevAsyncBaseSm* sm,
                        Zub::Ptr< Zub::Clock > const& clock, Handler handler );
   Zub::String error_;
   AsyncOperationState asyncState_ = asyncNone;
   Zub::Ptr< HandlerClock > tcamRequestClock_;
   Zub::Seconds pendingOperationTimeout_ = 0.0;
   Zub::Ptr< HandlerClock > pendingOperationTimeoutClock_;
};

}  // namespace Nev
