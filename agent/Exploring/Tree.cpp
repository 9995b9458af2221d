#include <Exploring/Tree.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include <fmt/format.h>

#include <Exploring/Endings.h>
#include <Exploring/Processes.h>
#include <Story/InputError.h>

#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Exploring {

namespace {

// Notes whether anything has happened.
class Effect final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      isThere = isThere || !std::holds_alternative< Story::Traced >( event );
   }

   bool isThere = false;
};

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
   int const status = inProcess( output, [ & ] {
      tryBranch( exploration, config, branch, limits, output, findings );
   } );
   if ( branch.begin.empty() && status != 0 ) {
      throw std::runtime_error(
         fmt::format( "the switch does not come up: {}", lastLineOf( output.lastWords() ) ) );
   }
   return findings.findings();
}

}  // namespace Exploring
