// The parent's side of a child process: passes on its events, and tells how it ended.
#pragma once

#include <optional>
#include <span>

#include <Process/Descriptor.h>
#include <Process/EventPipe.h>
#include <Process/Interruption.h>
#include <Process/LastWords.h>
#include <Process/Lines.h>
#include <Process/TurnTimer.h>
#include <Story/Observer.h>

#include <poll.h>

namespace Process {

class Listener {
 public:
   struct Context {
      Descriptor events;
      Descriptor output;  // the child's printed output
      std::span< std::byte const > ring;
      Story::Observer & observer;
      Interruption const & interruption;
      TurnTimer timer;
   };

   // The listener's view of the child.
   class Child {
    public:
      Child() = default;
      Child( Child const & ) = delete;
      Child & operator=( Child const & ) = delete;
      virtual ~Child() = default;

      // Its status in the form of waitpid(), once it has ended.
      virtual std::optional< int > status() = 0;
      virtual void kill() = 0;
   };

   explicit Listener( Context context );

   // Returns when the child has ended and the observer has been told everything, including the end.
   void listen( Child & child );

 private:
   bool isAnyOpen() const { return events_.pipe().isOpen() || output_.pipe().isOpen(); }
   bool hear( std::chrono::milliseconds patience );
   bool isReady( std::span< pollfd > pipes, std::chrono::milliseconds patience );
   void hearRest();
   bool isToEnd();
   void tellEnd( int status );
   void tellStop( int status );
   void takeEvent( Story::Event const & event );
   void takeOutput( std::string const & line );

   EventReceiver events_;
   Lines output_;
   std::span< std::byte const > ring_;
   Story::Observer & observer_;
   Interruption const & interruption_;
   TurnTimer timer_;
   LastWords lastWords_;
   bool hasEnded_ = false;    // the child has told its end
   bool isOverTime_ = false;  // a turn has taken too long
};

}  // namespace Process
