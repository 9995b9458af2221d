// Another process of the agent comes up on chips that hold the rules of the one before.
#include <csignal>

#include <Exploring/CallLog.h>
#include <Snapshot/Rules.h>

#include <AgentRun.h>
#include <Shipped.h>

#include <sys/wait.h>
#include <unistd.h>

namespace {

// A run of a shipped scenario, and one that goes on behind it.
class Restart : public AgentRun {
 protected:
   void runFirst( std::string const & name ) {
      story.clear();
      calls.clear();
      scenario = Steps::readScenario( Shipped::fileOf( name ) );
      Host::Agent agent( scenario, config(), ring.bytes(), story );
      agent.begin();
      before = rulesOf( agent.units() );
      for ( auto const & made : story.all< Story::CallMade >() ) {
         calls.push_back( made.call );
      }
      story.clear();
   }
   static Host::AgentConfig config() {
      Host::AgentConfig config;
      config.plugin = Support::plugin();
      return config;
   }
   static Host::AgentConfig withoutSteps() {
      Host::AgentConfig config = Restart::config();
      config.lastStep = 0;
      return config;
   }

   Chip::Rules before;
   std::vector< Chip::HardwareCall > calls;
};

std::vector< std::string > namesOf( Chip::Rules const & rules ) {
   std::vector< std::string > names;
   for ( Chip::Rule const & rule : rules ) {
      names.push_back( rule.name );
   }
   std::sort( names.begin(), names.end() );
   return names;
}

TEST_F( Restart, MakesNewRulesBesideTheOldOnes ) {
   for ( std::string const name : { "first-segment", "first-segment-class-id" } ) {
      runFirst( name );
      ASSERT_FALSE( before.empty() );
      Host::Agent agent( scenario, withoutSteps(), ring.bytes(), story );
      agent.begin( { calls, scenario.steps } );
      auto const changes = changesBetween( before, rulesOf( agent.units() ) );
      EXPECT_TRUE( changes.removed.empty() );
      EXPECT_TRUE( changes.changed.empty() );
      EXPECT_EQ( namesOf( changes.added ), namesOf( before ) ) << name;
   }
}

TEST_F( Restart, FindsTheStateThatWasPublishedLast ) {
   runFirst( "first-segment" );
   Host::Agent agent( scenario, withoutSteps(), ring.bytes(), story );
   agent.begin( { {}, scenario.steps } );
   EXPECT_TRUE( agent.audit().isInSync() );
   EXPECT_EQ( namesOf( rulesOf( agent.units() ) ), namesOf( before ) );
   EXPECT_TRUE( story.all< Story::ExpectationChecked >().empty() );  // those steps are over
   EXPECT_TRUE( story.all< Story::BadInput >().empty() );
}

TEST( CallLog, IsWholeWhenItsProcessIsKilled ) {
   Exploring::CallLog const log;
   Brum::PerUnitBitmap ports;
   ports.bitSet( 70 );
   Chip::HardwareCall const request{ "getEntry", "", 1, 3, { { "name", std::string( "a" ) } }, {} };
   Chip::HardwareCall const mask{ "addEgressMaskAction", "", 1, 3, { { "ports", ports } }, 0 };
   pid_t const pid = fork();
   if ( pid == 0 ) {
      log.add( { 0, request } );
      log.add( { 2, mask } );
      raise( SIGKILL );
   }
   waitpid( pid, nullptr, 0 );
   auto const calls = log.calls();
   ASSERT_EQ( calls.size(), 2U );
   EXPECT_EQ( calls[ 0 ].steps, 0U );
   EXPECT_EQ( calls[ 0 ].call, request );
   EXPECT_EQ( calls[ 1 ].steps, 2U );
   EXPECT_EQ( calls[ 1 ].call, mask );
}

}  // namespace
