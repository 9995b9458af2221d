// The one interface through which every event of a run passes.
#pragma once

#include <vector>

#include <Story/Event.h>

namespace Story {

// Is told every event once, in order, and changes nothing. Where events come from another process,
// it is also told when it has been told all that have come, and the next may take a while.
class Observer {
 public:
   Observer() = default;
   Observer( Observer const & ) = delete;
   Observer & operator=( Observer const & ) = delete;
   virtual ~Observer() = default;

   virtual void onEvent( Event const & event ) = 0;
   virtual void onPause() {}
};

// Passes every event on to several observers, in the order given. They must outlive it.
class Observers final : public Observer {
 public:
   explicit Observers( std::vector< Observer * > observers )
         : observers_( std::move( observers ) ) {}

   void onEvent( Event const & event ) override {
      for ( Observer * const observer : observers_ ) {
         observer->onEvent( event );
      }
   }
   void onPause() override {
      for ( Observer * const observer : observers_ ) {
         observer->onPause();
      }
   }

 private:
   std::vector< Observer * > observers_;
};

}  // namespace Story
