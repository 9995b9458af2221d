#include <Process/EndWatch.h>

#include <time.h>
#include <unistd.h>

namespace Process {

namespace {

using Flag = volatile sig_atomic_t;

constexpr int kSignalBase = 128;         // of exit codes, as in shells
constexpr long kLeastWork = 10'000'000;  // in nanoseconds; the watch itself takes less

Flag isWatched = 0;
Flag watchedSignal = 0;
Flag watchedGroup = 0;
Flag isAlive = 0;
timespec workedBefore{};

timespec worked() {
   timespec time{};
   clock_gettime( CLOCK_PROCESS_CPUTIME_ID, &time );
   return time;
}

bool isMuchMore( timespec const & now, timespec const & before ) {
   return now.tv_sec != before.tv_sec || now.tv_nsec - before.tv_nsec >= kLeastWork;
}

// Uses only calls that a signal handler may make.
void look( int ) {
   timespec const now = worked();
   if ( isAlive == 0 && !isMuchMore( now, workedBefore ) ) {
      if ( watchedGroup != 0 ) {
         kill( -watchedGroup, SIGKILL );
      }
      _exit( kSignalBase + watchedSignal );
   }
   isAlive = 0;
   workedBefore = now;
   alarm( EndWatch::kPatience );
}

}  // namespace

EndWatch::EndWatch() {
   watchedGroup = 0;
   isWatched = 1;
   struct sigaction looked {};
   looked.sa_handler = &look;
   looked.sa_flags = SA_RESTART;
   sigaction( SIGALRM, &looked, &before_ );
}

EndWatch::~EndWatch() {
   alarm( 0 );
   isWatched = 0;
   sigaction( SIGALRM, &before_, nullptr );
}

void EndWatch::noteSignal( int signal ) {
   if ( isWatched != 0 ) {
      watchedSignal = signal;
      isAlive = 0;
      workedBefore = worked();
      alarm( kPatience );
   }
}

void EndWatch::goOn() {
   if ( isWatched != 0 ) {
      alarm( 0 );
   }
}

void EndWatch::noteOutput() {
   isAlive = 1;
}

void EndWatch::groupIs( pid_t group ) {
   watchedGroup = group;
}

}  // namespace Process
