#include <Process/EndRequest.h>

#include <Process/EndWatch.h>
#include <Process/Interruption.h>

namespace Process {

namespace {

volatile sig_atomic_t requested = 0;
std::array< struct sigaction, Interruption::kSignals.size() > former{};

void restore() {
   for ( std::size_t n = 0; n < former.size(); ++n ) {
      sigaction( Interruption::kSignals.at( n ), &former.at( n ), nullptr );
   }
}

// Uses only calls that a signal handler may make.
void takeRequest( int signal ) {
   requested = signal;
   EndWatch::noteSignal( signal );
   restore();
}

}  // namespace

EndRequest::EndRequest() {
   requested = 0;
   struct sigaction noted {};
   noted.sa_handler = &takeRequest;
   for ( std::size_t n = 0; n < former.size(); ++n ) {
      int const signal = Interruption::kSignals.at( n );
      sigaction( signal, nullptr, &former.at( n ) );
      if ( former.at( n ).sa_handler != SIG_IGN ) {
         sigaction( signal, &noted, nullptr );
      }
   }
}

EndRequest::~EndRequest() {
   restore();
}

int EndRequest::signal() const {
   return requested;
}

}  // namespace Process
