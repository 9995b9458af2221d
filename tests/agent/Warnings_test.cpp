// Names that lead nowhere: the run goes on, and says so.
#include <Host/Warnings.h>

#include <AgentRun.h>

#include <nlohmann/json.hpp>

namespace {

using Texts = std::vector< std::string >;

class Warnings : public AgentRun {
 protected:
   Texts told() const {
      Texts texts;
      for ( Story::Warning const & warning : story.all< Story::Warning >() ) {
         texts.push_back( warning.text );
      }
      return texts;
   }
};

TEST_F( Warnings, NameTheTraceHandlesThatNoLoadedModuleHasAndWhereTheyStand ) {
   Host::AgentConfig config;
   config.trace = { { "ApiVornall", "4" }, { "Sample*", "8" }, { "Nothing*", "0-5" } };
   run(
      "   - expect:\n"
      "      - trace: { handle: Sampel, level: 0, text: x, times: 0 }\n"
      "      - trace: { handle: Sample, level: 0, text: x, times: 0 }\n",
      "{ ingress: 8 }", config );

   EXPECT_EQ( told(),
              ( Texts{ "--trace: 'ApiVornall' is no trace handle of a loaded module; did you mean "
                       "'ApiVornal'?",
                       "--trace: 'Nothing*' matches no trace handle of a loaded module",
                       "leaf.yaml:21: 'Sampel' is no trace handle of a loaded module; did you mean "
                       "'Sample'?" } ) );
   EXPECT_EQ( inStep< Story::Warning >( 0 ).size(), 3U ) << "once the plug-in is loaded";
   EXPECT_EQ( held(), ( std::vector{ true, true } ) ) << "the run goes on";
}

TEST_F( Warnings, NameTheLineOfLevelsThatNoHandleTakes ) {
   scenario = Steps::readScenarioText( Switches::leaf( "   - note: x\n" ), "leaf.yaml" );
   EXPECT_EQ( Host::unknownTraceHandles( scenario, {} ),
              Texts{ "leaf.yaml:18: 'Sample' is no trace handle of a loaded module" } )
      << "no plug-in is loaded";
   scenario.trace.front().handles = "*";
   EXPECT_EQ( Host::unknownTraceHandles( scenario, {} ), Texts{} );
}

TEST_F( Warnings, AreAbsentWhereAllNamesLeadSomewhere ) {
   run( "   - note: x\n" );
   EXPECT_EQ( told(), Texts{} );
}

// A whole run of the program, with a feature file beside the scenario.
class ProgramWarnings : public testing::Test {
 protected:
   Support::Ran run( std::vector< std::string > const & more, std::string const & toggles ) {
      directory.file( "VornalL3.json", toggles );
      std::vector< std::string > arguments{
         "run", directory.file( "scenario.yaml", Support::contentOf( vniMulticast ) )
      };
      arguments.insert( arguments.end(), more.begin(), more.end() );
      return Support::vornal( arguments );
   }

   std::filesystem::path const vniMulticast =
      std::filesystem::path( VORNAL_SOURCE_DIR ) / "scenarios/vni-multicast/scenario.yaml";
   Support::Directory directory;
};

TEST_F( ProgramWarnings, NameTheTogglesThatNobodyHasAskedFor ) {
   auto const ran = run( {}, R"({ "SbdEvpnTcamOverideRule": false })" );

   EXPECT_EQ( ran.exitCode, 0 ) << ran.err;
   EXPECT_EQ( Support::timesIn(
                 ran.out, "\n   warning: " + ( directory.path() / "VornalL3.json" ).string() +
                             ": nobody has asked for the toggle 'SbdEvpnTcamOverideRule'; did you "
                             "mean 'SbdEvpnTcamOverrideRule'?\n" ),
              1U )
      << ran.out;
   EXPECT_EQ( run( {}, R"({ "SbdEvpnTcamOverrideRule": true })" ).out.find( "warning" ),
              std::string::npos );
}

TEST_F( ProgramWarnings, StandInTheDocumentWithTheirStep ) {
   auto const ran =
      run( { "--json", "--trace", "VornalEvpnSn/5" }, R"({ "SbdEvpnTcamOverrideRule": true })" );
   auto const document = nlohmann::json::parse( ran.out );

   ASSERT_EQ( document[ "warnings" ].size(), 1U );
   EXPECT_EQ( document[ "warnings" ][ 0 ][ "step" ], 0 );
   EXPECT_EQ( document[ "warnings" ][ 0 ][ "text" ],
              "--trace: 'VornalEvpnSn' is no trace handle of a loaded module; did you mean "
              "'VornalEvpnSm'?" );
   EXPECT_EQ( ran.exitCode, 0 );
}

}  // namespace
