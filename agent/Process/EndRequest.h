// Notes a request to end this process over a long row of short works, each of which notes one for
// itself (Process/Interruption.h).
//
//    Process::EndRequest const request;
//    while ( request.signal() == 0 && ... ) {
//       ...  // an Interruption comes and goes
//    }
//
// It takes SIGINT, SIGTERM and SIGHUP while no Interruption does. The next signal does what it did
// before the object. A signal that was ignored before stays ignored. One object in a process at a
// time, made before any Interruption.
#pragma once

namespace Process {

class EndRequest {
 public:
   EndRequest();
   EndRequest( EndRequest const & ) = delete;
   EndRequest & operator=( EndRequest const & ) = delete;
   ~EndRequest();

   // The signal that has come; 0: none.
   int signal() const;
};

}  // namespace Process
