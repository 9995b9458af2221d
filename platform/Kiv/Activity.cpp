#include <Kiv/Activity.h>

namespace Kiv {

namespace {

ActivityManager * inCharge = nullptr;

}  // namespace

ActivityManager::ActivityManager()
      : clock_( Quelm::make< Clock >() ), previous_( std::exchange( inCharge, this ) ) {}

ActivityManager::~ActivityManager() {
   QUELM_ASSERT( inCharge == this );
   inCharge = previous_;
}

bool ActivityManager::runOne() {
   ActivityLockAnchor const locked( *this );
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

void ActivityManager::run() {
   for ( ;; ) {
      while ( runOne() ) {
      }
      ActivityLockAnchor const locked( *this );
      auto const wakeUp = clock_->nextWakeUp();
      if ( !wakeUp ) {
         return;
      }
      clock_->nowIs( *wakeUp );
   }
}

void ActivityManager::lock() {
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
