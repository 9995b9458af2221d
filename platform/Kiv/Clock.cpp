#include <Kiv/Clock.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Kiv::Clock )

namespace Kiv {

void Clock::nowIs( Time time ) {
   QUELM_ASSERT( time >= now_ );
   now_ = time;
}

std::optional< Time > Clock::nextWakeUp() const {
   return armed_.empty() ? std::nullopt : std::optional( armed_.begin()->first.first );
}

bool Clock::fireOne() {
   if ( armed_.empty() || armed_.begin()->first.first > now_ ) {
      return false;
   }
   ClockReactor * const reactor = armed_.begin()->second;
   reactor->disarm();
   reactor->fire();
   return true;
}

ClockReactor::ClockReactor( Quelm::Ptr< Clock > clock, std::function< void() > handler )
      : clock_( std::move( clock ) ), handler_( std::move( handler ) ) {}

ClockReactor::~ClockReactor() {
   disarm();
}

void ClockReactor::timeMinIs( Time time ) {
   if ( !clock_ ) {
      return;
   }
   disarm();
   due_ = { time, clock_->armings_++ };
   clock_->armed_.emplace( due_, this );
   isArmed_ = true;
}

void ClockReactor::disarm() {
   if ( isArmed_ ) {
      clock_->armed_.erase( due_ );
      isArmed_ = false;
   }
}

void ClockReactor::fire() {
   if ( isActive_ && !isZombie_ ) {
      std::function< void() > const handler = handler_;  // may destroy this reactor
      handler();
   }
}

}  // namespace Kiv
