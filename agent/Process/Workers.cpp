#include <Process/Workers.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <list>
#include <optional>
#include <vector>

#include <fmt/format.h>

#include <Process/Descriptor.h>
#include <Process/Interruption.h>

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Process {

namespace {

using Clock = std::chrono::steady_clock;

// A worker that was asked to end has this time.
constexpr std::chrono::milliseconds kPatience{ 5000 };

// How often the signals, the workers and the progress are looked after when nothing else happens.
constexpr int kInterval = 50;  // in milliseconds

constexpr char kEnd = '\n';  // of a whole result

// --- In a worker

// The process that started it decides whether it goes on.
void handleSignals() {
   signal( SIGINT, SIG_IGN );
   signal( SIGHUP, SIG_IGN );
   signal( SIGTERM, SIG_DFL );
}

[[noreturn]] void beWorker( std::size_t piece, PieceWork const & work, Descriptor const & results,
                            pid_t parent ) noexcept {
   handleSignals();
   prctl( PR_SET_PDEATHSIG, SIGTERM );
   if ( getppid() != parent ) {
      _exit( EXIT_FAILURE );
   }
   results.write( work( piece ) + kEnd );
   std::exit( EXIT_SUCCESS );
}

// --- In the process that shares the work out

std::string endOf( int status ) {
   return WIFSIGNALED( status )
             ? fmt::format( "signal {} ({})", WTERMSIG( status ), strsignal( WTERMSIG( status ) ) )
             : fmt::format( "exit code {}", WEXITSTATUS( status ) );
}

class Worker {
 public:
   Worker( std::size_t piece, PieceWork const & work ) : piece_( piece ), begin_( Clock::now() ) {
      Pipe pipe = pipeNew();
      // Both processes would write the buffered text.
      std::cout.flush();
      std::fflush( nullptr );
      pid_t const parent = getpid();
      pid_ = fork();
      if ( pid_ < 0 ) {
         throwSystemError( "cannot start a process for a piece of work" );
      }
      if ( pid_ == 0 ) {
         pipe.out.close();
         beWorker( piece, work, pipe.in, parent );
      }
      results_ = std::move( pipe.out );
   }
   Worker( Worker const & ) = delete;
   Worker & operator=( Worker const & ) = delete;
   ~Worker() {
      if ( !status_ ) {
         kill( SIGKILL );
         wait( 0 );
      }
   }

   std::size_t piece() const { return piece_; }
   int fd() const { return results_.fd(); }
   void kill( int signal ) const { ::kill( pid_, signal ); }
   // A worker whose pipe has ended is about to end.
   bool isOver() {
      wait( results_.isOpen() ? WNOHANG : 0 );
      return status_.has_value();
   }

   // Reads what has come. A process that the plug-in has left behind can keep the pipe open.
   void read() {
      pollfd ready{ fd(), POLLIN, 0 };
      while ( results_.isOpen() && poll( &ready, 1, 0 ) > 0 ) {
         if ( !results_.readInto( text_ ) ) {
            results_.close();
         }
      }
   }

   // Once it is over.
   Worked worked() {
      read();
      Worked worked;
      worked.end = endOf( *status_ );
      worked.seconds = std::chrono::duration< double >( Clock::now() - begin_ ).count();
      if ( text_.ends_with( kEnd ) ) {
         text_.pop_back();
         worked.result = std::move( text_ );
      }
      return worked;
   }

 private:
   void wait( int options ) {
      int status = 0;
      if ( !status_ && waitpid( pid_, &status, options ) == pid_ ) {
         status_ = status;
      }
   }

   std::size_t piece_;
   Clock::time_point begin_;
   pid_t pid_ = 0;
   Descriptor results_;
   std::string text_;
   std::optional< int > status_;
};

// The workers under way. They end with it.
class Workers {
 public:
   Workers() = default;
   Workers( Workers const & ) = delete;
   Workers & operator=( Workers const & ) = delete;
   // Asks them to end, and waits until they have; in the end it kills them.
   ~Workers() {
      for ( Worker const & worker : all_ ) {
         worker.kill( SIGTERM );
      }
      auto const last = Clock::now() + kPatience;
      while ( !all_.empty() && Clock::now() < last ) {
         takeThoseOver( []( Worker & ) {} );
      }
   }

   std::size_t count() const { return all_.size(); }
   void add( std::size_t piece, PieceWork const & work ) { all_.emplace_back( piece, work ); }

   // Waits until a worker says something or ends, or for the interval, and takes those that are
   // over out.
   template< typename Take > void takeThoseOver( Take const & take ) {
      std::vector< pollfd > ready;
      for ( Worker const & worker : all_ ) {
         ready.push_back( { worker.fd(), POLLIN, 0 } );
      }
      poll( ready.data(), ready.size(), kInterval );
      all_.remove_if( [ & ]( Worker & worker ) {
         worker.read();
         bool const isOver = worker.isOver();
         if ( isOver ) {
            take( worker );
         }
         return isOver;
      } );
   }

 private:
   std::list< Worker > all_;
};

}  // namespace

int workAll( Pieces const & pieces ) {
   Interruption const interruption;
   Workers workers;
   std::size_t next = 0;
   while ( ( next < pieces.count || workers.count() != 0 ) && interruption.signal() == 0 ) {
      for ( ; workers.count() < pieces.jobs && next < pieces.count; ++next ) {
         workers.add( next, pieces.work );
      }
      workers.takeThoseOver( [ & ]( Worker & worker ) {
         if ( interruption.signal() == 0 ) {  // it may have ended the worker, too
            pieces.take( worker.piece(), worker.worked() );
         }
      } );
      pieces.progress();
   }
   return interruption.signal();
}

}  // namespace Process
