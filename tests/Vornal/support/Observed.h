// An entity that tells a listener when somebody subscribes to it or unsubscribes, and when its last
// user lets go of it. (It tells of the former when its publisher is asked for, so it tells of its
// own changes as well.)
#pragma once

#include <functional>
#include <string>
#include <utility>

#include <Kiv/Entity.h>

namespace Support {

struct Listener {
   std::function< void() > onSubscription = [] {};
   std::function< void() > onRelease = [] {};
};

template< typename T > class Observed : public T {
 public:
   template< typename... Arguments >
   explicit Observed( Listener listener, Arguments &&... arguments )
         : T( std::forward< Arguments >( arguments )... ), listener_( std::move( listener ) ) {}
   Observed( Observed const & ) = delete;
   Observed & operator=( Observed const & ) = delete;
   ~Observed() override { listener_.onRelease(); }

   Kiv::Publisher & publisher() const override {
      listener_.onSubscription();
      return T::publisher();
   }

 private:
   Listener listener_;
};

}  // namespace Support
