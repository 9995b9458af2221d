// Makes sure that an interrupted program ends, also when nobody reads what it has to print.
//
//    Process::EndWatch const watch;
//
// In the scope of an object, a process that has taken note of a signal (Process/Interruption.h)
// ends with exit code 128 and the signal's number as soon as it has neither worked nor written for
// kPatience seconds. Its child and what the child has started end with it; an output that it was
// writing is not complete. A process that works, or that has a slow reader, has all the time it
// needs. Uses SIGALRM and alarm(). One object in a process at a time.
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

   // These do nothing without an object.

   // A signal asks this process to end. Can be called in a signal handler.
   static void signalCame( int signal );
   // The reader of an output has taken something.
   static void hasWritten();
   // The process group that is to end with this process; 0: none.
   static void groupIs( pid_t group );

 private:
   struct sigaction before_ {};
};

}  // namespace Process
