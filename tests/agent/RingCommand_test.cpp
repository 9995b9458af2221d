// `vornal ring`: the lines of a trace ring, for programs and while the run goes on.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <Running.h>
#include <Support.h>
#include <Switches.h>

namespace {

using Json = nlohmann::json;
using Support::Running;
using Support::TestPipe;

class RingCommand : public testing::Test {
 protected:
   std::vector< std::string > run( std::string const & steps ) const {
      return { "run",
               "--json",
               directory.file( "leaf.yaml", Switches::leaf( steps ) ),
               "--ring",
               ring,
               "--plugin",
               Support::testPlugin( "segment-rules" ) };
   }

   Support::Directory directory;
   std::string const ring = directory.path() / "ring";
   std::string const ready = "   - ready: subagents::l2Ready\n";
};

TEST_F( RingCommand, PrintsADocumentForPrograms ) {
   ASSERT_EQ( Support::vornal( run( ready ) ).exitCode, 0 );
   auto const ran = Support::vornal( { "ring", ring, "--json" } );
   EXPECT_EQ( ran.exitCode, 0 );
   EXPECT_EQ(
      Json::parse( ran.out ),
      Json::parse(
         R"({ "formatVersion": "1.0", "lines": [ { "number": 0, "time": 0, "step": 1, "handle": "Sample",
                                             "level": 5, "isCut": false,
                                             "text": "handleSegment intfId: Ethernet1" } ] })" ) );
}

TEST_F( RingCommand, EndsAtOnceWhenTheRunThatItFollowsIsOver ) {
   ASSERT_EQ( Support::vornal( run( ready ) ).exitCode, 0 );
   auto const ran = Support::vornal( { "ring", "--follow", ring } );
   EXPECT_EQ( ran.exitCode, 0 );
   EXPECT_EQ( ran.out, Support::vornal( { "ring", ring } ).out );
}

TEST_F( RingCommand, FollowsARunToItsEnd ) {
   TestPipe told;
   TestPipe lines;
   int const nothing = open( "/dev/null", O_RDWR | O_CLOEXEC );
   Running running( run( ready +
                         "   - call: { entity: /plugins/Sample::Mounter, operation: hang }\n" ),
                    { nothing, nothing, told.in() } );
   told.closeEnd( 1 );
   EXPECT_EQ( told.read( "\n" ), "hanging\n" );

   Running following( { "ring", "--follow", "--json", ring }, { nothing, lines.in(), nothing } );
   lines.closeEnd( 1 );
   Json const line = Json::parse( lines.read( "\n" ) );
   EXPECT_EQ( line[ "text" ], "handleSegment intfId: Ethernet1" );
   EXPECT_EQ( line[ "step" ], 1 );
   EXPECT_FALSE( following.ends( 0 ) );

   running.signal( SIGINT );
   running.signal( SIGINT );
   EXPECT_EQ( following.wait(), 0 );
   EXPECT_EQ( lines.read(), "" );
   close( nothing );
}

TEST_F( RingCommand, EndsWithTheSignalThatInterruptsIt ) {
   TestPipe told;
   TestPipe lines;
   int const nothing = open( "/dev/null", O_RDWR | O_CLOEXEC );
   Running const running(
      run( ready + "   - call: { entity: /plugins/Sample::Mounter, operation: hang }\n" ),
      { nothing, nothing, told.in() } );
   told.closeEnd( 1 );
   EXPECT_EQ( told.read( "\n" ), "hanging\n" );
   Running following( { "ring", "--follow", ring }, { nothing, lines.in(), nothing } );
   lines.closeEnd( 1 );
   EXPECT_NE( lines.read( "\n" ), "" );
   following.signal( SIGINT );
   EXPECT_EQ( following.wait(), 130 );
   EXPECT_NE( Support::vornal( { "help", "ring" } ).out.find( "130 SIGINT (Ctrl-C)" ),
              std::string::npos );
   close( nothing );
}

}  // namespace
