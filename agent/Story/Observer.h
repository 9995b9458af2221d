// The one interface through which every event of a run passes.
#pragma once

#include <vector>

#include <Story/Event.h>

namespace Story {

// Is told every event once, in order, and changes nothing.
class Observer {
 public:
   Observer() = default;
   Observer( Observer const & ) = delete;
   Observer & operator=( Observer const & ) = delete;
   virtual ~Observer() = default;

   virtual void onEvent( Event const & event ) = 0;
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

 private:
   std::vector< Observer * > observers_;
};

}  // namespace Story
