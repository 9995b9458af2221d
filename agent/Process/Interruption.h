// Notes a request to end this process: SIGINT (Ctrl-C), SIGTERM or SIGHUP (the terminal has gone).
//
// While an object exists, it notes the first of these signals. A second one does what it did before
// the object: it ends the process at once, unless the program has a handler of its own. A signal
// that was ignored before, as in a background job, stays ignored. One object in a process at a
// time.
#pragma once

#include <array>

#include <signal.h>

namespace Process {

class Interruption {
 public:
   static constexpr std::array kSignals{ SIGINT, SIGTERM, SIGHUP };

   Interruption();
   Interruption( Interruption const & ) = delete;
   Interruption & operator=( Interruption const & ) = delete;
   ~Interruption();

   // The signal that has come; 0: none.
   int signal() const { return last(); }
   // The same for the latest object, even after its end.
   static int last();
};

}  // namespace Process
