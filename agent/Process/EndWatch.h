// Ends an interrupted program even when nobody reads its output.
//
//    Process::EndWatch const watch;
//
// While an object exists, a process that has noted a signal (Process/Interruption.h) ends with exit
// code 128 plus the signal's number as soon as it has neither worked nor written for kPatience
// seconds. Its child and the child's processes end with it; the output being written stays
// incomplete. A process that works, or has a slow reader, gets all the time it needs. Uses SIGALRM
// and alarm(). One object in a process at a time.
#pragma once

#include <signal.h>
#include <sys/types.h>

namespace Process {

class EndWatch {
 public:
   static constexpr unsigned kPatience = 2;

   EndWatch();
   EndWatch( EndWatch const & ) = delete;
   EndWatch & operator=( EndWatch const & ) = delete;
   ~EndWatch();

   // Without an object, these functions do nothing.

   // A signal asks this process to end. Can be called in a signal handler.
   static void noteSignal( int signal );
   // The program goes on after the signal.
   static void goOn();
   // The reader of an output has taken something.
   static void noteOutput();
   // Sets the process group that ends with this process; 0: none.
   static void groupIs( pid_t group );

 private:
   struct sigaction before_ {};
};

}  // namespace Process
