#include <Process/Interruption.h>

#include <Process/EndWatch.h>

namespace Process {

namespace {

volatile sig_atomic_t lastSignal = 0;

void takeNote( int signal ) {
   lastSignal = signal;
   EndWatch::noteSignal( signal );
}

}  // namespace

Interruption::Interruption() {
   lastSignal = 0;
   struct sigaction noted {};
   noted.sa_handler = &takeNote;
   noted.sa_flags = static_cast< int >( SA_RESETHAND );
   for ( std::size_t n = 0; n < kSignals.size(); ++n ) {
      sigaction( kSignals.at( n ), nullptr, &before_.at( n ) );
      if ( before_.at( n ).sa_handler != SIG_IGN ) {
         sigaction( kSignals.at( n ), &noted, nullptr );
      }
   }
}

Interruption::~Interruption() {
   for ( std::size_t n = 0; n < kSignals.size(); ++n ) {
      sigaction( kSignals.at( n ), &before_.at( n ), nullptr );
   }
}

int Interruption::last() {
   return lastSignal;
}

}  // namespace Process
