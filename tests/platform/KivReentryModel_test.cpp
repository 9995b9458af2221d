// Any script of what handlers do to the subscriptions, against a model: the definition of who is
// called. Subscriptions are numbered; a delivery calls those that were there when it began and are
// still there when their turn comes.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include <rapidcheck/gtest.h>

#include "support/Switch.h"

namespace KivReentryModelTest {

using Support::Switch;
using Watch = Kiv::Watch< Switch >;

constexpr std::size_t kSubscribers = 8;

// What one call of a handler does: a change of its own, or something to a subscription, which it
// ends where there is one and begins where there is none.
struct Step {
   std::size_t subscriber;
   bool isChange;
};

std::ostream & operator<<( std::ostream & out, Step const & step ) {
   return step.isChange ? out << "change" : out << "turn " << step.subscriber;
}

// Whoever is called does the next step of the script.
class Run {
 public:
   explicit Run( std::vector< Step > const & script ) : script_( script ) {}
   Run( Run const & ) = delete;
   Run & operator=( Run const & ) = delete;
   virtual ~Run() = default;

   void play() {
      for ( std::size_t n = 0; n < kSubscribers; ++n ) {
         turn( n );
      }
      change();
      change();
   }
   std::vector< std::size_t > const & called() const { return called_; }

 protected:
   virtual void change() = 0;
   virtual void turn( std::size_t subscriber ) = 0;

   void call( std::size_t subscriber ) {
      called_.push_back( subscriber );
      if ( at_ < script_.size() ) {
         Step const step = script_[ at_++ ];
         step.isChange ? change() : turn( step.subscriber );
      }
   }

 private:
   std::vector< Step > const & script_;
   std::size_t at_ = 0;
   std::vector< std::size_t > called_;
};

class ModelRun final : public Run {
 public:
   using Run::Run;

 private:
   struct Subscription {
      std::size_t subscriber;
      int number;
   };

   void change() override {
      int const bound = numbers_;
      int last = -1;
      for ( ;; ) {
         auto const next = std::find_if( all_.begin(), all_.end(), [ & ]( Subscription const & s ) {
            return s.number > last && s.number < bound;
         } );
         if ( next == all_.end() ) {
            return;
         }
         last = next->number;
         call( next->subscriber );
      }
   }
   void turn( std::size_t subscriber ) override {
      auto const ended = std::erase_if( all_, [ & ]( Subscription const & s ) {
         return s.subscriber == subscriber;
      } );
      if ( ended == 0 ) {
         all_.push_back( { subscriber, numbers_++ } );
      }
   }

   std::vector< Subscription > all_;
   int numbers_ = 0;
};

class RealRun final : public Run {
 public:
   using Run::Run;

 private:
   void change() override { switch_->mtuIs( switch_->mtu() + 1 ); }
   void turn( std::size_t subscriber ) override {
      std::unique_ptr< Watch > & watch = watches_[ subscriber ];
      if ( watch ) {
         watch.reset();
         return;
      }
      watch = std::make_unique< Watch >( switch_, [ this, subscriber ]( Kiv::Change const & ) {
         call( subscriber );
      } );
      watch->hasNotificationActiveIs( true );
   }

   Quelm::Ptr< Switch > switch_ = Quelm::make< Switch >( "leaf1" );
   std::array< std::unique_ptr< Watch >, kSubscribers > watches_;
};

RC_GTEST_PROP( KivReentryModel, AnyScriptOfHandlersCallsWhomTheModelCalls, () ) {
   auto const isChange = rc::gen::map( rc::gen::inRange( 0, 4 ), []( int n ) { return n == 0; } );
   auto const script = *rc::gen::container< std::vector< Step > >(
      rc::gen::construct< Step >( rc::gen::inRange< std::size_t >( 0, kSubscribers ), isChange ) );
   ModelRun model( script );
   RealRun real( script );
   model.play();
   real.play();
   RC_ASSERT( real.called() == model.called() );
}

}  // namespace KivReentryModelTest
