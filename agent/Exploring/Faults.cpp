#include <Exploring/Faults.h>

#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <span>
#include <stdexcept>

#include <fmt/format.h>

#include <Exploring/Endings.h>
#include <Exploring/Processes.h>
#include <Snapshot/Rules.h>
#include <Steps/Reader.h>

#include <sys/wait.h>
#include <unistd.h>

namespace Exploring {

namespace {

constexpr S32 kCode = -1;  // of a call that fails

// The first number of a Sequence that is a fault; the second one counts calls or requests. Of two
// faults that end alike, the one whose end says more comes first: behind a call that fails nothing
// has to be right.
enum Fault : U16 { end, refusal, failure };

constexpr char kRequest[] = "getEntry";

// No group is full any more.
constexpr std::array< char const *, 2 > kRoom{ "foreign-entries: { group: ingress, count: 0 }",
                                               "foreign-entries: { group: egress, count: 0 }" };

// Keeps the calls of a run.
class Logging final : public Story::Observer {
 public:
   explicit Logging( CallLog const & log ) : log_( log ) {}

   void stepBegins() { ++steps_; }
   void onEvent( Story::Event const & event ) override {
      if ( auto const * const made = std::get_if< Story::CallMade >( &event ) ) {
         log_.add( { steps_, made->call } );
      }
   }

 private:
   CallLog const & log_;
   U32 steps_ = 0;
};

// Watches for the call that fails, and tells of it when the plug-in goes on to another call.
class Failure final : public Story::Observer {
 public:
   // Of the calls that can fail, the one with that number from now on fails.
   void expect( U32 number ) { left_ = number; }
   bool hasGoneOn() const { return *hasGoneOn_; }

   void onEvent( Story::Event const & event ) override {
      auto const * const made = std::get_if< Story::CallMade >( &event );
      if ( !made ) {
         return;
      }
      if ( hasFailed_ ) {
         *hasGoneOn_ = true;
      } else if ( made->call.operation != kRequest && left_ != 0 && --left_ == 0 ) {
         hasFailed_ = true;
      }
   }

   // For the next process, which will begin as a copy of this one.
   void clear() { *hasGoneOn_ = false; }

 private:
   U32 left_ = 0;
   bool hasFailed_ = false;
   Shared< bool > hasGoneOn_;  // for the process that waits for the end of this one
};

// The call's own line where it has one, and the assertion's, each once.
bool isToldOnce( Chip::HardwareCall const & call, std::string const & output ) {
   auto const count = [ & ]( std::string const & part ) {
      std::size_t times = 0;
      for ( std::size_t at = output.find( part ); at != std::string::npos;
            at = output.find( part, at + 1 ) ) {
         ++times;
      }
      return times;
   };
   bool const hasLine = !call.callText.empty();
   return count( " API ERROR:" ) == ( hasLine ? 1U : 0U ) &&
          ( !hasLine || count( ' ' + call.callText + " API ERROR:" ) == 1 ) &&
          count( ": Assertion '" ) == 1;
}

using Entry = std::pair< U32, U32 >;  // unit and id

// All that the calls have made, those gone among them.
std::set< Entry > entriesOf( std::span< Chip::HardwareCall const > calls ) {
   std::set< Entry > entries;
   for ( Chip::HardwareCall const & call : calls ) {
      entries.emplace( call.unit, call.entry );
   }
   return entries;
}

Chip::Rules rulesAmong( std::set< Entry > const & entries, Chip::Units const & units ) {
   Chip::Rules rules = rulesOf( units );
   std::erase_if( rules, [ & ]( Chip::Rule const & rule ) {
      return !entries.contains( { rule.key.unit, rule.key.id } );
   } );
   return rules;
}

// For an audit of what the agent has made itself: the rules take room as before, and are no rules
// of anybody.
void becomeForeign( Chip::Rules const & rules, Chip::Units & units ) {
   for ( Chip::Rule const & rule : rules ) {
      Chip::Group & group = *units.group( rule.key.unit, rule.key.group );
      group.release( rule.key.id );
      group.foreignIs( group.foreign() + 1 );
   }
}

bool isError( int status ) {
   return WIFEXITED( status ) && WEXITSTATUS( status ) == EXIT_FAILURE;
}

}  // namespace

Faults::Faults( std::filesystem::path const & file, Host::AgentConfig config,
                std::chrono::milliseconds longestStep )
      : config_( std::move( config ) ), longestStep_( longestStep ) {
   config_.lastStep = 0;
   std::vector< Scenario::AddedStep > added;
   for ( char const * const step : kRoom ) {
      added.push_back( { "room", step, {}, true } );
   }
   model_ = Steps::readScenario( file, added );
   run();
   for ( std::size_t number = 0; number < count(); ++number ) {
      added.push_back( { "fault", text( faultAt( number ) ), {}, true } );
   }
   model_ = Steps::readScenario( file, added );
}

std::string Faults::text( Sequence const & fault ) {
   switch ( fault.front() ) {
   case failure: return fmt::format( "fail-call: {{number: {}, code: {}}}", fault.back(), kCode );
   case refusal: return fmt::format( "refuse-entry: {{number: {}}}", fault.back() );
   default: return fmt::format( "end-at-call: {{number: {}}}", fault.back() );
   }
}

bool Faults::isFailure( Sequence const & fault ) {
   return fault.front() == failure;
}

// --- Without a fault

void Faults::run() {
   CallLog const log;
   Shared< bool > isUp;
   SharedFindings findings;
   Output const output;
   int const status = inProcess( output, [ & ] {
      Logging logging( log );
      Trial trial( setting(), logging );
      trial.comeUp();
      *isUp = true;
      for ( std::size_t n = 0; n < ownSteps(); ++n ) {
         logging.stepBegins();
         trial.carryOut( model_.steps[ n ] );
      }
      addDifferences( trial.audit(), findings, {}, 1 );
   } );
   if ( !*isUp ) {
      throw std::runtime_error( "the switch does not come up: " + output.text() );
   }
   if ( isError( status ) ) {
      throw std::runtime_error( output.text() );
   }
   if ( status != 0 ) {
      addStop( status, output.lastWords(), findings, {}, 1 );
   }
   take( log.calls() );
   without_ = findings.findings();
}

void Faults::take( std::vector< LoggedCall > const & calls ) {
   for ( LoggedCall const & logged : calls ) {
      if ( logged.steps == 0 ) {
         ++atStart_;
      } else if ( logged.call.operation == kRequest ) {
         ++requests_;
      } else {
         fallible_.push_back( calls_.size() );
      }
      calls_.push_back( logged.call );
      stepsAt_.push_back( logged.steps );
   }
   constexpr auto kMost = std::numeric_limits< U16 >::max();
   if ( calls_.size() > kMost ) {
      throw std::runtime_error(
         fmt::format( "{} calls are too many; give a scenario with at most {}", calls_.size(),
                      kMost ) );
   }
}

std::size_t Faults::ownSteps() const {
   return model_.ownSteps + kRoom.size();
}

void Faults::carryOut( Trial & trial, std::size_t first ) const {
   for ( std::size_t n = first; n < ownSteps(); ++n ) {
      trial.tried( model_.steps[ n ] );
   }
}

// --- With one

// At each call behind the start-up, and behind the last one.
std::size_t Faults::ends() const {
   return calls_.size() - atStart_ + 1;
}

std::size_t Faults::count() const {
   return ends() + requests_ + fallible_.size();
}

// The faults of one kind stand behind those of the kind before.
std::size_t Faults::before( U16 kind ) const {
   std::array< std::size_t, 3 > const starts{ 0, ends(), ends() + requests_ };
   return starts.at( kind );
}

Sequence Faults::faultAt( std::size_t number ) const {
   U16 kind = failure;
   while ( number < before( kind ) ) {
      --kind;
   }
   return { kind, static_cast< U16 >( number - before( kind ) + 1 ) };
}

Scenario::Step const & Faults::stepOf( Sequence const & fault ) const {
   return model_.steps[ ownSteps() + before( fault.front() ) + fault.back() - 1 ];
}

Findings Faults::tried( std::size_t first, std::size_t every ) const {
   SharedFindings findings;
   std::vector< Sequence > ofCalls;
   for ( std::size_t number = first; number < count(); number += every ) {
      Sequence const fault = faultAt( number );
      ++findings.counts().sequences;
      ++findings.counts().standFor;
      if ( fault.front() == end ) {
         tryEnd( fault, findings );
      } else {
         ofCalls.push_back( fault );
      }
   }
   tryCalls( ofCalls, findings );
   Findings tried = findings.findings();
   for ( auto const & [ key, found ] : without_.all ) {
      tried.all.erase( key );
   }
   return tried;
}

// Each in a copy of a process in which the switch has come up.
void Faults::tryCalls( std::vector< Sequence > const & faults, SharedFindings & findings ) const {
   Output const output;
   int const status = inProcess( output, [ & ] {
      Failure failed;
      Trial trial( setting(), failed );
      trial.comeUp();
      for ( Sequence const & fault : faults ) {
         output.clear();
         failed.clear();
         pid_t const pid = forked();
         if ( pid == 0 ) {
            if ( isFailure( fault ) ) {
               failed.expect( fault.back() );
            }
            trial.carryOut( stepOf( fault ) );
            carryOut( trial, 0 );
            addDifferences( trial.audit(), findings, fault, 1 );
            _exit( EXIT_SUCCESS );
         }
         int const ended = waitFor( pid );
         noteEnd( fault, ended, failed.hasGoneOn(), output, findings );
      }
   } );
   if ( status != 0 ) {
      throw std::runtime_error( "the faults cannot be tried: " + output.text() );
   }
}

void Faults::noteEnd( Sequence const & fault, int status, bool hasGoneOn, Output const & output,
                      SharedFindings & findings ) const {
   if ( status != 0 ) {
      addStop( status, output.lastWords(), findings, fault, 1 );
   }
   if ( !isFailure( fault ) ) {
      return;
   }
   Chip::HardwareCall const & call = calls_[ fallible_[ fault.back() - 1U ] ];
   bool const isAnswer = status != 0 && output.lastWords().assertion();
   if ( !isAnswer || hasGoneOn ) {
      findings.add( Kind::unnoticed, call.operation, { 1, fault } );
   } else if ( !isToldOnce( call, output.text() ) ) {
      findings.add( Kind::unnoticed, "not told once: " + call.operation, { 1, fault } );
   }
}

void Faults::tryEnd( Sequence const & fault, SharedFindings & findings ) const {
   Output const output;
   int const status = inProcess( output, [ & ] { comeUpBehind( fault, findings ); } );
   if ( isError( status ) ) {
      throw std::runtime_error( "the end of the process cannot be tried: " + output.text() +
                                "; leave out steps that change the chip (drift)" );
   }
   if ( status != 0 ) {
      addStop( status, output.lastWords(), findings, fault, 1 );
   }
}

void Faults::comeUpBehind( Sequence const & fault, SharedFindings & findings ) const {
   std::size_t const call = atStart_ + fault.back() - 1;
   std::size_t const steps = call < calls_.size() ? stepsAt_[ call ] : ownSteps();
   Host::Agent::Past const past{ std::span( calls_ ).first( call ),
                                 std::span( model_.steps ).first( steps ) };
   auto const old = entriesOf( past.calls );
   Story::Observers nobody( {} );
   Trial trial( setting(), nobody );
   trial.comeUp( past );
   Chip::Rules const before = rulesAmong( old, trial.units() );
   carryOut( trial, steps );
   Chip::Rules const after = rulesAmong( old, trial.units() );
   if ( after != before ) {
      findings.add( Kind::difference, "a rule of the process before has changed", { 1, fault } );
   }
   becomeForeign( after, trial.units() );
   addDifferences( trial.audit(), findings, fault, 1 );
}

}  // namespace Exploring
