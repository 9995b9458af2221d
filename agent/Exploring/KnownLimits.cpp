#include <Exploring/KnownLimits.h>

#include <Exploring/Branches.h>
#include <Exploring/Endings.h>
#include <Exploring/Processes.h>
#include <Process/Workers.h>
#include <Steps/Reader.h>
#include <Story/InputError.h>
#include <Testing/Collection.h>

namespace Exploring {

namespace {

namespace fs = std::filesystem;

class Nobody final : public Story::Observer {
 public:
   void onEvent( Story::Event const & ) override {}
};

// How the scenario ends, and the differences on its way.
Findings shownBy( Scenario::Model const & scenario, Host::AgentConfig const & config ) {
   SharedFindings findings;
   Output const output;
   int const status = inProcess( output, [ & ] {
      Nobody nobody;
      std::vector< std::byte > ring( Trace::Ring::sizeFor( kRingLines ) );
      Host::AgentConfig begins = config;
      begins.lastStep = 0;
      Host::Agent agent( scenario, begins, ring, nobody );
      agent.begin();
      for ( Scenario::Step const & step : scenario.steps ) {
         agent.carryOut( step );
         addDifferences( agent.audit(), findings, {}, 1 );
      }
   } );
   if ( status != 0 ) {
      addStop( status, output.lastWords(), findings, {}, 1 );
   }
   return findings.findings();
}

}  // namespace

KnownLimits knownLimitsIn( fs::path const & folder, Host::AgentConfig const & config,
                           std::size_t jobs ) {
   std::vector< fs::path > const files = Testing::scenariosAmong( { folder } );
   auto const work = [ & ]( std::size_t number ) {
      try {
         return encoded( {}, shownBy( Steps::readScenario( files[ number ] ), config ) );
      } catch ( std::exception const & ) {
         return std::string();
      }
   };
   KnownLimits limits;
   auto const take = [ & ]( std::size_t number, Process::Worked const & worked ) {
      if ( worked.result.value_or( "" ).empty() ) {
         throw Story::InputError(
            files[ number ].string() +
            ": this scenario of a limit cannot be run; 'vornal run' says why" );
      }
      for ( auto const & [ key, found ] : decoded( *worked.result ).second.all ) {
         limits[ key ].insert( files[ number ].string() );
      }
   };
   Process::workAll( { files.size(), jobs, work, take } );
   return limits;
}

}  // namespace Exploring
