#include <Exploring/Faults.h>

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

#include <fmt/format.h>

#include <Exploring/Endings.h>
#include <Exploring/Processes.h>
#include <Steps/Reader.h>
#include <Story/InputError.h>

#include <unistd.h>

namespace Exploring {

namespace {

constexpr S32 kCode = -1;  // of a call that fails

// The first number of a Sequence that is a fault; the second one counts calls or requests.
enum Fault : U16 { failure, refusal };

constexpr char kRequest[] = "getEntry";

// Counts the calls of a run, and notes the one that fails.
class Watch final : public Story::Observer {
 public:
   explicit Watch( Calls & calls ) : calls_( calls ) {}

   void onEvent( Story::Event const & event ) override {
      if ( auto const * const made = std::get_if< Story::CallMade >( &event ) ) {
         ++( made->call.operation == kRequest ? calls_.requests : calls_.made );
         if ( made->call.returnCode == kCode ) {
            failed_ = made->call.operation;
         }
      }
   }

   // Empty: none has failed.
   std::string const & failed() const { return failed_; }

 private:
   Calls & calls_;
   std::string failed_;
};

// No group is full any more.
constexpr std::array< char const *, 2 > kRoom{ "foreign-entries: { group: ingress, count: 0 }",
                                               "foreign-entries: { group: egress, count: 0 }" };

}  // namespace

Faults::Faults( std::filesystem::path const & file, Host::AgentConfig config,
                std::chrono::milliseconds longestStep )
      : config_( std::move( config ) ), longestStep_( longestStep ) {
   std::vector< Scenario::AddedStep > added;
   for ( char const * const step : kRoom ) {
      added.push_back( { "room", step, {}, true } );
   }
   model_ = Steps::readScenario( file, added );
   config_.lastStep = 0;
   Shared< Calls > calls;
   Shared< bool > isUp;
   SharedFindings findings;
   Output const output;
   int const status = inProcess( output, [ & ] {
      Watch watch( *calls );
      std::vector< std::byte > ring( Trace::Ring::sizeFor( kRingLines ) );
      Host::Agent agent( model_, config_, ring, watch );
      agent.begin();
      *calls = {};
      *isUp = true;
      carryOut( agent );
      addDifferences( agent.audit(), findings, {}, 1 );
   } );
   if ( !*isUp ) {
      throw std::runtime_error( "the switch does not come up: " + output.text() );
   }
   if ( status != 0 ) {
      addStop( status, output.lastWords(), findings, {}, 1 );
   }
   calls_ = *calls;
   without_ = findings.findings();
   if ( std::max( calls_.made, calls_.requests ) > std::numeric_limits< U16 >::max() ) {
      throw std::runtime_error(
         fmt::format( "{} calls are too many; give a scenario with at most {}", calls_.made,
                      std::numeric_limits< U16 >::max() ) );
   }
   for ( std::size_t number = 0; number < count(); ++number ) {
      added.push_back( { "fault", text( faultAt( number ) ), {}, true } );
   }
   model_ = Steps::readScenario( file, added );
}

Sequence Faults::faultAt( std::size_t number ) const {
   bool const isFailure = number < calls_.made;
   return { isFailure ? failure : refusal,
            static_cast< U16 >( ( isFailure ? number : number - calls_.made ) + 1 ) };
}

std::string Faults::text( Sequence const & fault ) {
   return fault.front() == failure
             ? fmt::format( "fail-call: {{number: {}, code: {}}}", fault.back(), kCode )
             : fmt::format( "refuse-entry: {{number: {}}}", fault.back() );
}

// A step that the fault has made impossible is left out.
void Faults::carryOut( Host::Agent & agent ) const {
   for ( std::size_t n = 0; n < model_.ownSteps + kRoom.size(); ++n ) {
      timeIs( longestStep_ );
      try {
         agent.carryOut( model_.steps[ n ] );
      } catch ( Story::InputError const & ) {
         continue;
      }
   }
}

Findings Faults::tried( std::size_t first, std::size_t every ) const {
   SharedFindings findings;
   Output const output;
   int const status = inProcess( output, [ & ] {
      Calls calls;
      Watch watch( calls );
      std::vector< std::byte > ring( Trace::Ring::sizeFor( kRingLines ) );
      Host::Agent agent( model_, config_, ring, watch );
      agent.begin();
      for ( std::size_t number = first; number < count(); number += every ) {
         Sequence const fault = faultAt( number );
         output.clear();
         pid_t const pid = forked();
         if ( pid == 0 ) {
            agent.carryOut( model_.steps[ model_.ownSteps + kRoom.size() + number ] );
            carryOut( agent );
            addDifferences( agent.audit(), findings, fault, 1 );
            if ( !watch.failed().empty() ) {
               findings.add( Kind::unnoticed, watch.failed(), fault, 1 );
            }
            _exit( EXIT_SUCCESS );
         }
         if ( int const end = waitFor( pid ); end != 0 ) {
            addStop( end, output.lastWords(), findings, fault, 1 );
         }
         ++findings.counts().sequences;
         ++findings.counts().standFor;
      }
   } );
   if ( status != 0 ) {
      throw std::runtime_error( "the faults cannot be tried: " + output.text() );
   }
   Findings tried = findings.findings();
   for ( auto const & [ key, found ] : without_.all ) {
      tried.all.erase( key );
   }
   return tried;
}

}  // namespace Exploring
