#include "nev/NevBaseSm.h"

#include "nev/NevCommonSmData.h"

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

class NevAsyncBaseSm::TcamRequestClock : public Zub::Clock::NotifieeConst {
 public:
   explicit TcamRequestClock( NevAsyncBaseSm* sm ) : sm_( sm ) {}
   void onTime() override {
      if( !sm_->zombie() ) sm_->processTcamRequestQueue();
   }

 private:
   NevAsyncBaseSm* sm_;
};

class NevAsyncBaseSm::PendingOperationTimeoutClock : public Zub::Clock::NotifieeConst {
 public:
   explicit PendingOperationTimeoutClock( NevAsyncBaseSm* sm ) : sm_( sm ) {}
   void onTime() override {
      if( !sm_->zombie() ) sm_->handlePendingOperationTimeout();
   }

 private:
   NevAsyncBaseSm* sm_;
};

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
   if( !clock ) return tcamRequestClockDel();
   if( !tcamRequestClock_ ) tcamRequestClock_ = Zub::make< TcamRequestClock >( this );
   tcamRequestClock_->notifierIs( clock );
}

void NevAsyncBaseSm::pendingOperationTimeoutClockDel() {
   pendingOperationTimeoutClock_ = nullptr;
}

void NevAsyncBaseSm::pendingOperationTimeoutClockIs( Zub::Ptr< Zub::Clock > const& clock ) {
   if( !clock ) return pendingOperationTimeoutClockDel();
   if( !pendingOperationTimeoutClock_ ) {
      pendingOperationTimeoutClock_ = Zub::make< PendingOperationTimeoutClock >( this );
   }
   pendingOperationTimeoutClock_->notifierIs( clock );
}

}  // namespace Nev
