#include <Process/Child.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#include <Process/Descriptor.h>
#include <Process/LastWords.h>
#include <Process/RingMemory.h>
#include <Story/Codec.h>

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Process {

namespace {

constexpr std::size_t kMostTraceLines = 20;

// --- In the child

// Hands every event on through the pipe, as soon as it happens.
class PipeObserver final : public Story::Observer {
 public:
   explicit PipeObserver( Descriptor const & pipe ) : pipe_( pipe ) {}

   void onEvent( Story::Event const & event ) override {
      if ( !pipe_.write( Story::encoded( event ) + '\n' ) ) {
         _exit( EXIT_FAILURE );  // nobody listens any more
      }
   }

 private:
   Descriptor const & pipe_;
};

[[noreturn]] void beChild( Work const & work, Descriptor const & events, Descriptor const & output,
                           pid_t parent ) {
   prctl( PR_SET_PDEATHSIG, SIGKILL );
   if ( getppid() != parent ) {
      _exit( EXIT_FAILURE );
   }
   signal( SIGPIPE, SIG_IGN );
   dup2( output.fd(), STDOUT_FILENO );
   dup2( output.fd(), STDERR_FILENO );
   PipeObserver observer( events );
   work( observer );
   std::exit( EXIT_SUCCESS );
}

// --- In the parent

// The child process; killed, if it is still there, when its owner gives up.
class Child {
 public:
   explicit Child( pid_t pid ) : pid_( pid ) {}
   Child( Child const & ) = delete;
   Child & operator=( Child const & ) = delete;
   ~Child() {
      if ( pid_ != 0 ) {
         kill( pid_, SIGKILL );
         wait();
      }
   }

   // Waits for its end; the status as waitpid() has it.
   int wait() {
      int status = 0;
      while ( waitpid( pid_, &status, 0 ) < 0 && errno == EINTR ) {
      }
      pid_ = 0;
      return status;
   }

 private:
   pid_t pid_;
};

// The lines that come out of a pipe.
class Lines {
 public:
   explicit Lines( Descriptor pipe ) : pipe_( std::move( pipe ) ) {}

   Descriptor const & pipe() const { return pipe_; }

   // Reads what is there and hands every complete line to `take`.
   template< typename Take > void read( Take const & take ) {
      if ( !pipe_.readInto( text_ ) ) {
         pipe_.close();
      }
      std::size_t begin = 0;
      for ( std::size_t end = text_.find( '\n' ); end != std::string::npos;
            end = text_.find( '\n', begin ) ) {
         take( text_.substr( begin, end - begin ) );
         begin = end + 1;
      }
      text_.erase( 0, begin );
   }

   // What came after the last line end.
   std::string const & rest() const { return text_; }

 private:
   Descriptor pipe_;
   std::string text_;
};

std::string reasonOf( int status ) {
   return WIFSIGNALED( status ) ? "signal " + std::to_string( WTERMSIG( status ) ) + " (" +
                                     strsignal( WTERMSIG( status ) ) + ")"
                                : "exit code " + std::to_string( WEXITSTATUS( status ) );
}

// Listens to one child until both of its pipes are closed.
class Listener {
 public:
   Listener( Descriptor events, Descriptor output, Story::Observer & observer )
         : events_( std::move( events ) ), output_( std::move( output ) ), observer_( observer ) {}

   void listen() {
      while ( events_.pipe().isOpen() || output_.pipe().isOpen() ) {
         // A closed pipe's descriptor is -1, which poll() leaves out.
         std::array< pollfd, 2 > ready{ pollfd{ events_.pipe().fd(), POLLIN, 0 },
                                        pollfd{ output_.pipe().fd(), POLLIN, 0 } };
         if ( poll( ready.data(), ready.size(), -1 ) < 0 ) {
            continue;
         }
         if ( ready[ 0 ].revents != 0 ) {
            events_.read( [ & ]( std::string const & line ) { takeEvent( line ); } );
         } else if ( ready[ 1 ].revents != 0 ) {
            output_.read( [ & ]( std::string const & line ) { takeOutput( line ); } );
         }
      }
      if ( !output_.rest().empty() ) {
         takeOutput( output_.rest() );
      }
   }

   // Tells that the child stopped, unless it ended as expected.
   void ended( int status, std::span< std::byte const > ring ) {
      if ( hasEnded_ && WIFEXITED( status ) && WEXITSTATUS( status ) == 0 ) {
         return;
      }
      auto const & lines = lastWords_.lines();
      observer_.onEvent( Story::Stopped{ reasonOf( status ),
                                         lastWords_.assertion(),
                                         { lines.begin(), lines.end() },
                                         lastLines( ring, kMostTraceLines ) } );
   }

 private:
   void takeEvent( std::string const & line ) {
      Story::Event const event = Story::decoded( line );
      hasEnded_ = std::holds_alternative< Story::RunEnds >( event ) ||
                  std::holds_alternative< Story::BadInput >( event );
      observer_.onEvent( event );
   }
   void takeOutput( std::string const & line ) {
      lastWords_.lineNew( line );
      observer_.onEvent( Story::OutputLine{ line } );
   }

   Lines events_;
   Lines output_;
   Story::Observer & observer_;
   LastWords lastWords_;
   bool hasEnded_ = false;
};

}  // namespace

void runInChild( Work const & work, std::span< std::byte const > ring,
                 Story::Observer & observer ) {
   Pipe events = pipeNew();
   Pipe output = pipeNew();
   // What is still buffered would be written twice, by either process.
   std::cout.flush();
   std::fflush( nullptr );
   pid_t const parent = getpid();
   pid_t const pid = fork();
   if ( pid < 0 ) {
      failed( "cannot start a process for the agent" );
   }
   if ( pid == 0 ) {
      beChild( work, events.in, output.in, parent );
   }
   Child child( pid );
   events.in.close();
   output.in.close();
   Listener listener( std::move( events.out ), std::move( output.out ), observer );
   listener.listen();
   listener.ended( child.wait(), ring );
}

}  // namespace Process
