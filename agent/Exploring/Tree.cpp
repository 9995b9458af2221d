#include <Exploring/Tree.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include <Exploring/Endings.h>
#include <Exploring/Processes.h>
#include <Exploring/Trial.h>
#include <Probing/Probes.h>

#include <signal.h>
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

// One process of the tree.
class Node {
 public:
   Node( Exploration const & exploration, Host::AgentConfig const & config, Limits const & limits,
         Output const & output, SharedFindings & findings )
         : exploration_( exploration ),
           length_( limits.length ),
           output_( output ),
           findings_( findings ),
           trial_( { exploration.model(), config, limits.step }, observers_ ) {
      probes_.watch( trial_.units(), [ this ] { return trial_.state(); } );
      trial_.comeUp();
   }

   // False when a step of it changes nothing. What is seen on the way is told elsewhere.
   bool comeTo( Sequence const & sequence ) {
      sequence_ = sequence;
      bool const isThere = std::all_of( sequence.begin(), sequence.end(),
                                        [ this ]( U16 event ) { return happens( event ); } );
      probes_.seenAtRest();
      return isThere;
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

   void judge() {
      Audit::Report const report = trial_.audit();
      addDifferences( report, findings_, sequence_, weight() );
      addSeen( probes_.seenAtRest(), report );
   }

 private:
   U64 weight() const { return exploration_.weight( sequence_ ); }

   void addSeen( Probing::Seen const & seen, Audit::Report const & report ) {
      findings_.counts().frames += seen.frames;
      for ( auto const & [ what, calls ] : seen.transients ) {
         findings_.add( Kind::transient, what, { weight(), sequence_, calls } );
      }
      bool const isPluginReady = trial_.state().isPluginReady;
      addLasting( unexplained( seen, report, isPluginReady ), findings_, sequence_, weight() );
   }

   bool happens( U16 event ) {
      effect_.isThere = false;
      return trial_.tried( exploration_.event( event ) ) && effect_.isThere;
   }

   [[noreturn]] void be( U16 event, bool isWhole ) {
      if ( happens( event ) ) {
         count();
         judge();
         if ( isWhole && sequence_.size() < length_ ) {
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
   std::size_t length_;
   Output const & output_;
   SharedFindings & findings_;
   Effect effect_;
   Probing::Probes probes_;
   Story::Observers observers_{ { &effect_, &probes_ } };
   Trial trial_;
   Sequence sequence_;
};

void tryBranch( Exploration const & exploration, Host::AgentConfig const & config,
                Branch const & branch, Limits const & limits, Output const & output,
                SharedFindings & findings, bool & isUp ) {
   Node node( exploration, config, limits, output, findings );
   isUp = true;
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

// The message of an error, or the last line of a plug-in that stopped.
std::string reasonOf( int status, Output const & output ) {
   if ( WIFSIGNALED( status ) && WTERMSIG( status ) == SIGALRM ) {
      return "it takes longer than the time limit of a turn";
   }
   auto const words = output.lastWords();
   std::string const last = words.lines().empty() ? "its process has ended" : words.lines().back();
   return WIFEXITED( status ) && WEXITSTATUS( status ) == EXIT_FAILURE ? output.text() : last;
}

}  // namespace

Findings explored( Exploration const & exploration, Host::AgentConfig const & config,
                   Branch const & branch, Limits const & limits ) {
   SharedFindings findings;
   Shared< bool > isUp;
   Output const output;
   int const status = inProcess( output, [ & ] {
      tryBranch( exploration, config, branch, limits, output, findings, *isUp );
   } );
   if ( !*isUp ) {
      throw std::runtime_error( "the switch does not come up: " + reasonOf( status, output ) );
   }
   return findings.findings();
}

}  // namespace Exploring
