#include <Process/Listener.h>

#include <array>
#include <cerrno>
#include <cstring>

#include <fmt/format.h>

#include <Process/Child.h>
#include <Process/RingMemory.h>

#include <sys/wait.h>
#include <time.h>

namespace Process {

namespace {

using Duration = TurnTimer::Duration;

constexpr std::size_t kMostTraceLines = 20;
// How long the parent waits for more when something has come: it takes many events at once, rather
// than wake up for each.
constexpr std::chrono::milliseconds kNap{ 1 };
// Enough reads to empty two full pipes.
constexpr int kMostReadsOfRest = 64;

Duration now( clockid_t clock ) {
   timespec time{};
   clock_gettime( clock, &time );
   return std::chrono::seconds( time.tv_sec ) + std::chrono::nanoseconds( time.tv_nsec );
}

std::string nameOf( int signal ) {
   return fmt::format( "signal {} ({})", signal, strsignal( signal ) );
}

std::string reasonOf( int status ) {
   return WIFSIGNALED( status ) ? nameOf( WTERMSIG( status ) )
                                : fmt::format( "exit code {}", WEXITSTATUS( status ) );
}

std::string limitText( Duration limit ) {
   return fmt::format( "turn limit of {} s", std::chrono::duration< double >( limit ).count() );
}

}  // namespace

Listener::Listener( Context context )
      : events_( std::move( context.events ), kLongestLine ),
        output_( std::move( context.output ), kLongestLine ),
        ring_( context.ring ),
        observer_( context.observer ),
        interruption_( context.interruption ),
        timer_( context.timer ) {}

void Listener::listen( Child & child ) {
   std::optional< int > status;
   while ( !status && !isToEnd() ) {
      hear( TurnTimer::kInterval );
      // Processes that the child has left behind can keep the pipes open, and print.
      status = child.status();
   }
   if ( !status ) {
      child.kill();
   }
   while ( !status ) {
      status = child.status();
      poll( nullptr, 0, status ? 0 : 1 );
   }
   hearRest();
   tellEnd( *status );
}

bool Listener::isToEnd() {
   isOverTime_ = timer_.isOver();
   return isOverTime_ || interruption_.signal() != 0;
}

// Reads the pipes, and waits if they are empty; false when nothing came.
bool Listener::hear( std::chrono::milliseconds patience ) {
   // A closed pipe's descriptor is -1, which poll() skips. With both closed, the child is about to
   // end.
   std::array< pollfd, 2 > pipes{ pollfd{ events_.pipe().fd(), POLLIN, 0 },
                                  pollfd{ output_.pipe().fd(), POLLIN, 0 } };
   if ( !isReady( pipes, isAnyOpen() ? patience : std::chrono::milliseconds( 1 ) ) ) {
      return false;
   }
   Duration const begin = now( CLOCK_THREAD_CPUTIME_ID );
   if ( pipes[ 0 ].revents != 0 ) {
      events_.read( [ & ]( Story::Event const & event ) { takeEvent( event ); },
                    [ & ]( std::string const & line ) { takeOutput( line ); } );
   } else {
      output_.read( [ & ]( std::string const & line ) { takeOutput( line ); } );
   }
   timer_.worked( now( CLOCK_THREAD_CPUTIME_ID ) - begin );
   return true;
}

// Waits for something to read; false when nothing came.
bool Listener::isReady( std::span< pollfd > pipes, std::chrono::milliseconds patience ) {
   auto const poll = [ & ]( std::chrono::milliseconds time ) {
      return ::poll( pipes.data(), pipes.size(), static_cast< int >( time.count() ) ) > 0;
   };
   if ( poll( std::chrono::milliseconds( 0 ) ) ) {
      return true;
   }
   if ( patience.count() == 0 ) {
      return false;
   }
   observer_.onPause();
   Duration const begin = now( CLOCK_MONOTONIC );
   bool const isReady = poll( patience );
   if ( isReady ) {
      ::poll( nullptr, 0, static_cast< int >( kNap.count() ) );
   }
   timer_.waited( now( CLOCK_MONOTONIC ) - begin );
   return isReady;
}

void Listener::hearRest() {
   int reads = 0;
   while ( isAnyOpen() && reads < kMostReadsOfRest && hear( std::chrono::milliseconds( 0 ) ) ) {
      ++reads;
   }
   // An unfinished event is lost; an unfinished line of output is not.
   if ( !output_.rest().empty() ) {
      takeOutput( output_.rest() );
   }
}

// --- The end

void Listener::tellEnd( int status ) {
   if ( hasEnded_ && status == 0 ) {
      return;
   }
   if ( int const signal = interruption_.signal(); signal != 0 ) {
      observer_.onEvent( Story::Interrupted{ signal, nameOf( signal ) } );
   } else if ( WIFSIGNALED( status ) && WTERMSIG( status ) == SIGBUS && !isWhole( ring_ ) ) {
      observer_.onEvent( Story::BadInput{
         "the file of the trace ring was cut short while the run went on; leave it alone until the "
         "run is over" } );
   } else {
      tellStop( status );
   }
}

void Listener::tellStop( int status ) {
   auto const & lines = lastWords_.lines();
   observer_.onEvent(
      Story::Stopped{ isOverTime_ ? limitText( timer_.limit() ) : reasonOf( status ),
                      lastWords_.assertion(),
                      { lines.begin(), lines.end() },
                      lastLines( ring_, kMostTraceLines ),
                      isOverTime_ } );
}

// --- What the child tells and prints

void Listener::takeEvent( Story::Event const & event ) {
   hasEnded_ = std::holds_alternative< Story::RunEnds >( event ) ||
               std::holds_alternative< Story::BadInput >( event );
   observer_.onEvent( event );
}

void Listener::takeOutput( std::string const & line ) {
   lastWords_.lineNew( line );
   observer_.onEvent( Story::OutputLine{ line } );
}

}  // namespace Process
