#include <Kiv/Activity.h>

#include <Kiv/TurnWatch.h>

namespace Kiv {

namespace {

ActivityManager * inCharge = nullptr;

TurnWatch & turnWatch() {
   static TurnWatch watch;
   return watch;
}

}  // namespace

void turnWatchIs( TurnWatch watch ) {
   turnWatch() = std::move( watch );
}

ActivityManager::ActivityManager()
      : clock_( Quelm::make< Clock >() ), previous_( std::exchange( inCharge, this ) ) {}

ActivityManager::~ActivityManager() {
   QUELM_ASSERT( inCharge == this );
   inCharge = previous_;
}

bool ActivityManager::runOne() {
   ActivityLockAnchor const locked( *this );
   return turnRun();
}

void ActivityManager::run() {
   for ( bool isMoreLeft = true; isMoreLeft; ) {
      // One lock for both: no turn is queued between finding none and moving the clock.
      ActivityLockAnchor const locked( *this );
      isMoreLeft = turnRun() || clockMoved();
   }
}

bool ActivityManager::turnRun() {
   if ( turnWatch() ) {
      turnWatch()();
   }
   if ( clock_->fireOne() ) {
      return true;
   }
   if ( turns_.empty() ) {
      return false;
   }
   std::function< void() > const turn = std::move( turns_.front() );
   turns_.pop_front();
   turn();
   return true;
}

bool ActivityManager::clockMoved() {
   auto const wakeUp = clock_->nextWakeUp();
   if ( wakeUp ) {
      clock_->nowIs( *wakeUp );
   }
   return wakeUp.has_value();
}

void ActivityManager::lock() {
   QUELM_ASSERT( !isLockHeld() );
   mutex_.lock();
   holder_ = std::this_thread::get_id();
}

void ActivityManager::unlock() {
   QUELM_ASSERT( isLockHeld() );
   holder_ = std::thread::id();
   mutex_.unlock();
}

ActivityManager * activityManager() {
   QUELM_ASSERT( inCharge );
   return inCharge;
}

bool hasActivityManager() {
   return inCharge != nullptr;
}

Time System::currentTime() {
   return activityManager()->clock()->now();
}

}  // namespace Kiv
