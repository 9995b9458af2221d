// Whether somebody wants this process to end: SIGINT (Ctrl-C), SIGTERM or SIGHUP (a terminal that
// is gone) has come.
//
// For the scope of an object the first of these signals is taken note of, and the second one ends
// the process at once, as it does without an object. A signal that was ignored before, as in a
// background job, stays ignored. One object in a process at a time.
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

   // The signal that has come; 0 when none has.
   int signal() const { return last(); }
   // The same for the latest object, also when that is gone.
   static int last();

 private:
   std::array< struct sigaction, kSignals.size() > before_{};
};

}  // namespace Process
