#include <Process/Interruption.h>

#include <Process/EndWatch.h>

namespace Process {

namespace {

volatile sig_atomic_t lastSignal = 0;
std::array< struct sigaction, Interruption::kSignals.size() > actionsBefore{};

// Uses only calls that a signal handler may make.
void takeNote( int signal ) {
   lastSignal = signal;
   EndWatch::noteSignal( signal );
   for ( std::size_t n = 0; n < actionsBefore.size(); ++n ) {
      if ( Interruption::kSignals.at( n ) == signal ) {
         sigaction( signal, &actionsBefore.at( n ), nullptr );
      }
   }
}

}  // namespace

Interruption::Interruption() {
   lastSignal = 0;
   struct sigaction noted {};
   noted.sa_handler = &takeNote;
   for ( std::size_t n = 0; n < kSignals.size(); ++n ) {
      sigaction( kSignals.at( n ), nullptr, &actionsBefore.at( n ) );
      if ( actionsBefore.at( n ).sa_handler != SIG_IGN ) {
         sigaction( kSignals.at( n ), &noted, nullptr );
      }
   }
}

Interruption::~Interruption() {
   for ( std::size_t n = 0; n < kSignals.size(); ++n ) {
      sigaction( kSignals.at( n ), &actionsBefore.at( n ), nullptr );
   }
}

int Interruption::last() {
   return lastSignal;
}

}  // namespace Process
