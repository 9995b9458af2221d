#include <Process/Child.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string_view>
#include <tuple>

#include <Kiv/TurnWatch.h>
#include <Process/Descriptor.h>
#include <Process/EndWatch.h>
#include <Process/EventPipe.h>
#include <Process/Interruption.h>
#include <Process/Listener.h>
#include <Process/Pulse.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Process {

namespace {

// The two pipes from the child to its parent.
struct Pipes {
   Pipe events = pipeNew();
   Pipe output = pipeNew();
};

// Room for the events that come while the parent waits for more of them. Without it the pipe has
// its usual size.
void enlarge( Pipe const & pipe ) {
   constexpr int kRoom = 1 << 20;
   std::ignore = fcntl( pipe.in.fd(), F_SETPIPE_SZ, kRoom );
}

// --- In the child

std::terminate_handler libraryHandler = nullptr;

// Sends every event through the pipe as soon as it happens.
class PipeObserver final : public Story::Observer {
 public:
   PipeObserver( Descriptor const & pipe, Pulse & pulse ) : sender_( pipe ), pulse_( pulse ) {}

   void onEvent( Story::Event const & event ) override {
      // A capture is one turn; the pulse beats for each of its frames.
      if ( std::holds_alternative< Story::FrameForwarded >( event ) ) {
         pulse_.beat();
      }
      if ( !sender_.send( event ) ) {
         _exit( EXIT_FAILURE );  // nobody reads the pipe any more
      }
   }

 private:
   EventSender sender_;
   Pulse & pulse_;
};

// Reports that memory ran out, before the library's own handler ends the process.
void onUncaught() {
   try {
      if ( auto const exception = std::current_exception() ) {
         std::rethrow_exception( exception );
      }
   } catch ( std::bad_alloc const & ) {
      constexpr std::string_view kSentence =
         "there is not enough memory for the process of the plug-in; allow more "
         "(ulimit -v), or play a smaller scenario\n";
      std::ignore = write( STDERR_FILENO, kSentence.data(), kSentence.size() );
   } catch ( ... ) {
      // The library's handler names it.
   }
   libraryHandler();
}

// The child's input is empty; its output goes to the parent.
void redirect( Descriptor const & output ) {
   Descriptor const nothing( open( "/dev/null", O_RDONLY | O_CLOEXEC ) );
   dup2( nothing.fd(), STDIN_FILENO );
   dup2( output.fd(), STDOUT_FILENO );
   dup2( output.fd(), STDERR_FILENO );
}

// The parent decides whether a run goes on.
void handleSignals() {
   signal( SIGINT, SIG_IGN );
   signal( SIGHUP, SIG_IGN );
   signal( SIGTERM, SIG_DFL );
   signal( SIGALRM, SIG_DFL );
   signal( SIGPIPE, SIG_IGN );
}

// An exception that leaves `work` ends the process where it was thrown.
[[noreturn]] void beChild( Work const & work, Pipes & pipes, Pulse & pulse,
                           pid_t parent ) noexcept {
   handleSignals();
   setpgid( 0, 0 );
   prctl( PR_SET_PDEATHSIG, SIGKILL );
   if ( getppid() != parent ) {
      _exit( EXIT_FAILURE );
   }
   pipes.events.out.close();
   pipes.output.out.close();
   redirect( pipes.output.in );
   libraryHandler = std::set_terminate( &onUncaught );
   Kiv::turnWatchIs( [ &pulse ] { pulse.beat(); } );
   PipeObserver observer( pipes.events.in, pulse );
   work( observer );
   std::exit( EXIT_SUCCESS );
}

// --- In the parent

// The child leads a process group, which ends with it. The group holds the processes that a plug-in
// has started.
class ChildProcess final : public Listener::Child {
 public:
   explicit ChildProcess( pid_t pid ) : pid_( pid ) {
      setpgid( pid, pid );  // the child does this too; either can be first
      EndWatch::groupIs( pid );
   }
   ChildProcess( ChildProcess const & ) = delete;
   ChildProcess & operator=( ChildProcess const & ) = delete;
   // Kills the child if it still runs.
   ~ChildProcess() override {
      if ( !status_ ) {
         kill();
         wait( 0 );
      }
      EndWatch::groupIs( 0 );
   }

   std::optional< int > status() override {
      if ( !status_ ) {
         wait( WNOHANG );
      }
      return status_;
   }
   void kill() override { ::kill( -pid_, SIGKILL ); }

 private:
   void wait( int options ) {
      siginfo_t ended{};
      while ( waitid( P_PID, static_cast< id_t >( pid_ ), &ended, WEXITED | WNOWAIT | options ) <
                 0 &&
              errno == EINTR ) {
      }
      if ( ended.si_pid == pid_ ) {
         // Kill the group before the number can belong to another process.
         kill();
         int status = 0;
         waitpid( pid_, &status, 0 );
         status_ = status;
      }
   }

   pid_t pid_;
   std::optional< int > status_;  // once it has ended
};

}  // namespace

void runInChild( Work const & work, std::span< std::byte const > ring, Story::Observer & observer,
                 std::chrono::milliseconds turnLimit ) {
   Pulse pulse;
   Pipes pipes;
   enlarge( pipes.events );
   Interruption const interruption;
   // Both processes would write the buffered text.
   std::cout.flush();
   std::fflush( nullptr );
   pid_t const parent = getpid();
   pid_t const pid = fork();
   if ( pid < 0 ) {
      throwSystemError( "cannot start a process for the agent" );
   }
   if ( pid == 0 ) {
      beChild( work, pipes, pulse, parent );
   }
   ChildProcess child( pid );
   pipes.events.in.close();
   pipes.output.in.close();
   Listener listener( { std::move( pipes.events.out ), std::move( pipes.output.out ), ring,
                        observer, interruption, TurnTimer( pulse, turnLimit ) } );
   listener.listen( child );
}

}  // namespace Process
