#include <Exploring/Tree.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <tuple>

#include <fmt/format.h>

#include <Exploring/Endings.h>
#include <Process/Descriptor.h>
#include <Process/LastWords.h>
#include <Story/InputError.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Exploring {

namespace {

constexpr U32 kRingLines = 64;  // nobody reads them

// Notes whether anything has happened.
class Effect final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      isThere = isThere || !std::holds_alternative< Story::Traced >( event );
   }

   bool isThere = false;
};

// What a process and those below it write to standard error; their standard output is lost.
class Output {
 public:
   Output() : text_( memfd_create( "output", MFD_CLOEXEC ) ) {}

   void redirect() const {
      Process::Descriptor const nothing( open( "/dev/null", O_WRONLY | O_CLOEXEC ) );
      dup2( nothing.fd(), STDOUT_FILENO );
      dup2( text_.fd(), STDERR_FILENO );
   }
   void clear() const {
      std::ignore = ftruncate( text_.fd(), 0 );
      lseek( text_.fd(), 0, SEEK_SET );
   }
   Process::LastWords lastWords() const {
      std::string text;
      lseek( text_.fd(), 0, SEEK_SET );
      while ( text_.readInto( text ) ) {
      }
      Process::LastWords words;
      std::istringstream lines( text );
      for ( std::string line; std::getline( lines, line ); ) {
         words.lineNew( line );
      }
      return words;
   }

 private:
   Process::Descriptor text_;
};

int waitFor( pid_t pid ) {
   int status = 0;
   while ( waitpid( pid, &status, 0 ) < 0 && errno == EINTR ) {
   }
   return status;
}

// A copy of this process; it ends with the other one.
pid_t forked() {
   pid_t const parent = getpid();
   pid_t const pid = fork();
   if ( pid < 0 ) {
      Process::throwSystemError( "cannot start a process for a sequence" );
   }
   if ( pid == 0 ) {
      signal( SIGALRM, SIG_DFL );
      prctl( PR_SET_PDEATHSIG, SIGKILL );
      if ( getppid() != parent ) {
         _exit( EXIT_FAILURE );
      }
   }
   return pid;
}

// The time that an event may take; its process is killed by SIGALRM.
void timeIs( std::chrono::milliseconds time ) {
   constexpr long kThousand = 1000;
   itimerval const timer{ {}, { time.count() / kThousand, time.count() % kThousand * kThousand } };
   setitimer( ITIMER_REAL, &timer, nullptr );
}

// One process of the tree.
class Node {
 public:
   Node( Exploration const & exploration, Host::AgentConfig const & config, Limits const & limits,
         Output const & output, SharedFindings & findings )
         : exploration_( exploration ),
           limits_( limits ),
           output_( output ),
           findings_( findings ),
           ring_( Trace::Ring::sizeFor( kRingLines ) ),
           agent_( exploration.model(), config, ring_, effect_ ) {
      agent_.begin();
   }

   // False when a step of it changes nothing.
   bool comeTo( Sequence const & sequence ) {
      sequence_ = sequence;
      return std::all_of( sequence.begin(), sequence.end(),
                          [ this ]( U16 event ) { return happens( event ); } );
   }

   void tryAll() {
      U16 const events = exploration_.events();
      for ( U16 event = 0; event < events; ++event ) {
         tryOne( event, true );
      }
   }

   // In a process of its own; with all that begin with it, or alone.
   void tryOne( U16 event, bool isWhole ) {
      sequence_.push_back( event );
      if ( exploration_.isCanonical( sequence_ ) ) {
         output_.clear();
         pid_t const pid = forked();
         if ( pid == 0 ) {
            be( event, isWhole );
         }
         noteEnd( waitFor( pid ) );
      }
      sequence_.pop_back();
   }

   void judge() { addDifferences( agent_.audit(), findings_, sequence_, weight() ); }

 private:
   U64 weight() const { return exploration_.weight( sequence_ ); }

   bool happens( U16 event ) {
      effect_.isThere = false;
      try {
         agent_.carryOut( exploration_.event( event ) );
      } catch ( Story::InputError const & ) {
         return false;
      }
      return effect_.isThere;
   }

   [[noreturn]] void be( U16 event, bool isWhole ) {
      timeIs( limits_.step );
      bool const isOne = happens( event );
      timeIs( {} );
      if ( isOne ) {
         count();
         judge();
         if ( isWhole && sequence_.size() < limits_.length ) {
            tryAll();
         }
      } else {
         ++findings_.counts().without;
      }
      _exit( EXIT_SUCCESS );
   }

   void count() {
      ++findings_.counts().sequences;
      findings_.counts().standFor += weight();
   }

   // Of the process that has just ended.
   void noteEnd( int status ) {
      if ( WIFSIGNALED( status ) || WEXITSTATUS( status ) != EXIT_SUCCESS ) {
         count();
         addStop( status, output_.lastWords(), findings_, sequence_, weight() );
      }
   }

   Exploration const & exploration_;
   Limits limits_;
   Output const & output_;
   SharedFindings & findings_;
   Effect effect_;
   std::vector< std::byte > ring_;
   Host::Agent agent_;
   Sequence sequence_;
};

void tryBranch( Exploration const & exploration, Host::AgentConfig const & config,
                Branch const & branch, Limits const & limits, Output const & output,
                SharedFindings & findings ) {
   Node node( exploration, config, limits, output, findings );
   if ( branch.begin.empty() ) {
      node.judge();
      return;
   }
   Sequence before = branch.begin;
   before.pop_back();
   if ( node.comeTo( before ) ) {
      node.tryOne( branch.begin.back(), branch.isWhole );
   }
}

std::string lastLineOf( Process::LastWords const & words ) {
   return words.lines().empty() ? "its process has ended" : words.lines().back();
}

}  // namespace

Findings explored( Exploration const & exploration, Host::AgentConfig const & config,
                   Branch const & branch, Limits const & limits ) {
   SharedFindings findings;
   Output const output;
   pid_t const pid = forked();
   if ( pid == 0 ) {
      output.redirect();
      try {
         tryBranch( exploration, config, branch, limits, output, findings );
         _exit( EXIT_SUCCESS );
      } catch ( std::exception const & error ) {
         std::cerr << error.what() << std::endl;
         _exit( EXIT_FAILURE );
      }
   }
   int const status = waitFor( pid );
   if ( branch.begin.empty() && status != 0 ) {
      throw std::runtime_error(
         fmt::format( "the switch does not come up: {}", lastLineOf( output.lastWords() ) ) );
   }
   return findings.findings();
}

}  // namespace Exploring
