#include <Exploring/KnownLimits.h>

#include <cstdlib>
#include <stdexcept>

#include <Exploring/Branches.h>
#include <Exploring/Endings.h>
#include <Exploring/Processes.h>
#include <Exploring/Trial.h>
#include <Probing/Probes.h>
#include <Process/Workers.h>
#include <Steps/Reader.h>
#include <Story/InputError.h>
#include <Testing/Collection.h>

#include <sys/wait.h>

namespace Exploring {

namespace {

namespace fs = std::filesystem;

// How the scenario ends, and on its way the differences and the frames that go wrong without one.
// std::runtime_error when it cannot be run.
Findings shownBy( Scenario::Model const & scenario, Host::AgentConfig const & config,
                  std::chrono::milliseconds longestStep ) {
   SharedFindings findings;
   Output const output;
   int const status = inProcess( output, [ & ] {
      Probing::Probes probes;
      Story::Observers observers( { &probes } );
      Trial trial( { scenario, config, longestStep }, observers );
      probes.watch( trial.units(), [ &trial ] { return trial.state(); } );
      trial.comeUp();
      for ( Scenario::Step const & step : scenario.steps ) {
         trial.carryOut( step );
         Audit::Report const report = trial.audit();
         addDifferences( report, findings, {}, 1 );
         bool const isReady = trial.state().isPluginReady;
         addLasting( unexplained( probes.seenAtRest(), report, isReady ), findings, {}, 1 );
      }
   } );
   if ( WIFEXITED( status ) && WEXITSTATUS( status ) == EXIT_FAILURE ) {
      throw std::runtime_error( output.text() );
   }
   if ( status != 0 ) {
      addStop( status, output.lastWords(), findings, {}, 1 );
   }
   return findings.findings();
}

}  // namespace

KnownLimits::KnownLimits( fs::path const & folder, Host::AgentConfig config,
                          std::chrono::milliseconds longestStep )
      : files_( Testing::scenariosAmong( { folder } ) ),
        config_( std::move( config ) ),
        longestStep_( longestStep ) {
   if ( files_.empty() ) {
      throw Story::InputError( folder.string() +
                               " has no scenarios; name a folder such as scenarios/limits" );
   }
   config_.lastStep = 0;
}

int KnownLimits::carryOut( std::size_t jobs ) {
   auto const work = [ & ]( std::size_t number ) {
      return resultOf( {}, [ & ] {
         return shownBy( Steps::readScenario( files_[ number ] ), config_, longestStep_ );
      } );
   };
   std::vector< Findings > found( files_.size() );
   auto const take = [ & ]( std::size_t number, Process::Worked const & worked ) {
      found[ number ] = findingsIn( worked, files_[ number ].string() ).second;
   };
   int const signal = Process::workAll( { files_.size(), jobs, work, take } );
   for ( std::size_t number = 0; number < files_.size(); ++number ) {
      for ( auto const & [ key, one ] : found[ number ].all ) {
         shown_[ key ].push_back( files_[ number ].string() );
      }
   }
   return signal;
}

std::vector< std::string > KnownLimits::showing( Key const & key ) const {
   auto const found = shown_.find( key );
   return found == shown_.end() ? std::vector< std::string >() : found->second;
}

}  // namespace Exploring
