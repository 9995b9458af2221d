#include <Testing/Workers.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <list>
#include <optional>
#include <stdexcept>

#include <fmt/format.h>

#include <Process/Descriptor.h>
#include <Process/Interruption.h>

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Testing {

namespace {

using Clock = std::chrono::steady_clock;

// How often the signals, the workers and the progress are looked after when nothing else happens.
constexpr int kInterval = 50;  // in milliseconds

// --- In a worker

// The process that started it decides whether it goes on.
void handleSignals() {
   signal( SIGINT, SIG_IGN );
   signal( SIGHUP, SIG_IGN );
   signal( SIGTERM, SIG_DFL );
}

[[noreturn]] void beWorker( std::filesystem::path const & file, Work const & work,
                            Process::Descriptor const & results, pid_t parent ) noexcept {
   handleSignals();
   prctl( PR_SET_PDEATHSIG, SIGTERM );
   if ( getppid() != parent ) {
      _exit( EXIT_FAILURE );
   }
   results.write( encoded( work( file ) ) + '\n' );
   std::exit( EXIT_SUCCESS );
}

// --- In the process that tests

std::string endOf( int status ) {
   return WIFSIGNALED( status )
             ? fmt::format( "signal {} ({})", WTERMSIG( status ), strsignal( WTERMSIG( status ) ) )
             : fmt::format( "exit code {}", WEXITSTATUS( status ) );
}

class Worker {
 public:
   Worker( std::size_t index, std::filesystem::path const & file, Work const & work )
         : index_( index ), begin_( Clock::now() ) {
      Process::Pipe pipe = Process::pipeNew();
      // Both processes would write the buffered text.
      std::cout.flush();
      std::fflush( nullptr );
      pid_t const parent = getpid();
      pid_ = fork();
      if ( pid_ < 0 ) {
         Process::throwSystemError( "cannot start a process for a scenario" );
      }
      if ( pid_ == 0 ) {
         pipe.out.close();
         beWorker( file, work, pipe.in, parent );
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

   std::size_t index() const { return index_; }
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
   Result result( std::filesystem::path const & file ) {
      read();
      Result result;
      try {
         result = decoded( text_ );
      } catch ( std::runtime_error const & ) {
         result.isOver = true;
         result.failures = { { "",
                               "the process that ran the scenario ended with " + endOf( *status_ ) +
                                  ", without a result",
                               {} } };
      }
      result.file = file.string();
      result.seconds = std::chrono::duration< double >( Clock::now() - begin_ ).count();
      return result;
   }

 private:
   void wait( int options ) {
      int status = 0;
      if ( !status_ && waitpid( pid_, &status, options ) == pid_ ) {
         status_ = status;
      }
   }

   std::size_t index_;
   Clock::time_point begin_;
   pid_t pid_ = 0;
   Process::Descriptor results_;
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
   void add( std::size_t index, std::filesystem::path const & file, Work const & work ) {
      all_.emplace_back( index, file, work );
   }

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

Tested testAll( std::vector< std::filesystem::path > const & files, std::size_t jobs,
                Work const & work, Progress const & progress ) {
   Process::Interruption const interruption;
   Tested tested;
   for ( auto const & file : files ) {
      tested.results.emplace_back().file = file.string();
   }
   Workers workers;
   std::size_t next = 0;
   while ( ( next < files.size() || workers.count() != 0 ) && interruption.signal() == 0 ) {
      for ( ; workers.count() < jobs && next < files.size(); ++next ) {
         workers.add( next, files[ next ], work );
      }
      workers.takeThoseOver( [ & ]( Worker & worker ) {
         tested.results[ worker.index() ] = worker.result( files[ worker.index() ] );
      } );
      progress( tested.results );
   }
   tested.signal = interruption.signal();
   return tested;
}

}  // namespace Testing
