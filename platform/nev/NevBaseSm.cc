#include "NevQos/platform/nev/NevBaseSm.h"

#include "NevQos/platform/nev/NevCommonSmData.h"

namespace Nev {

// Fires the machine's start-up once, on the first turn of the loop after construction.
class NevBaseSm::StartClock : public Zub::Clock::NotifieeConst {
 public:
   explicit StartClock( NevBaseSm* sm ) : sm_( sm ) {}
   void onTime() override {
      if( !sm_->zombie() && !sm_->initialized() ) sm_->handleInitialized();
   }

 private:
   NevBaseSm* sm_;
};

NevBaseSm::NevBaseSm( Zub::Ptr< NevCommonSmData const > const& ncsd ) : ncsd_( ncsd ) {
   startClock_ = Zub::make< StartClock >( this );
   startClock_->notifierIs( Zub::activityManager()->clock() );
   startClock_->timeMinIs( Zub::System::currentTime() );
}

NevBaseSm::~NevBaseSm() = default;

void NevBaseSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   zombieIs( zombie );
   startClock_->zombieIs( zombie );
}

class NevAsyncBaseSm::HandlerClock : public Zub::Clock::NotifieeConst {
 public:
   HandlerClock( NevAsyncBaseSm* sm, Handler handler ) : sm_( sm ), handler_( handler ) {}
   void onTime() override {
      if( !sm_->zombie() ) ( sm_->*handler_ )();
   }

 private:
   NevAsyncBaseSm* sm_;
   Handler handler_;
};

void NevAsyncBaseSm::clockIs( Zub::Ptr< HandlerClock >& slot, NevAsyncBaseSm* sm,
                              Zub::Ptr< Zub::Clock > const& clock, Handler handler ) {
   if( !clock ) {
      slot = nullptr;
      return;
   }
   if( !slot ) slot = Zub::make< HandlerClock >( sm, handler );
   slot->notifierIs( clock );
}

NevAsyncBaseSm::NevAsyncBaseSm( Zub::Ptr< NevCommonSmData const > const& ncsd )
    : NevBaseSm( ncsd ) {}

NevAsyncBaseSm::~NevAsyncBaseSm() = default;

void NevAsyncBaseSm::zubDoZombieReactors( bool zombie ) {
   if( this->zombie() == zombie ) return;
   NevBaseSm::zubDoZombieReactors( zombie );
   if( tcamRequestClock_ ) tcamRequestClock_->zombieIs( zombie );
   if( pendingOperationTimeoutClock_ ) pendingOperationTimeoutClock_->zombieIs( zombie );
}

Zub::Ptr< Zub::Clock::NotifieeConst > NevAsyncBaseSm::tcamRequestClock() const {
   return tcamRequestClock_;
}

Zub::Ptr< Zub::Clock::NotifieeConst > NevAsyncBaseSm::pendingOperationTimeoutClock() const {
   return pendingOperationTimeoutClock_;
}

void NevAsyncBaseSm::tcamRequestClockDel() {
   tcamRequestClock_ = nullptr;
}

void NevAsyncBaseSm::tcamRequestClockIs( Zub::Ptr< Zub::Clock > const& clock ) {
   clockIs( tcamRequestClock_, this, clock, &NevAsyncBaseSm::processTcamRequestQueue );
}

void NevAsyncBaseSm::pendingOperationTimeoutClockDel() {
   pendingOperationTimeoutClock_ = nullptr;
}

void NevAsyncBaseSm::pendingOperationTimeoutClockIs( Zub::Ptr< Zub::Clock > const& clock ) {
   clockIs( pendingOperationTimeoutClock_, this, clock,
            &NevAsyncBaseSm::handlePendingOperationTimeout );
}

}  // namespace Nev
