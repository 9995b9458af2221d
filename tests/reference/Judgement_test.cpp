// A run that is not as the reference says is found out: by its rules, its calls, its frames, its
// requests, its stop and its length. Here the reference is told something wrong.
#include <algorithm>
#include <functional>

#include <gtest/gtest.h>

#include <Judgement.h>
#include <Steps/Reader.h>

namespace {

using Reference::Told;

std::filesystem::path fileOf( std::string const & name ) {
   return std::filesystem::path( VORNAL_SOURCE_DIR "/scenarios" ) / name / "scenario.yaml";
}

// What is found on the scenario when the reference is told something else than the run.
std::string foundOn( std::string const & name, std::function< void( Told & ) > const & change ) {
   Told told = Reference::told( Steps::readScenario( fileOf( name ) ) );
   change( told );
   Judgement const judgement = judge( told, Run::of( fileOf( name ) ) );
   return judgement.isOff() ? judgement.text() : "";
}

template< typename Kind > void forget( std::vector< Reference::Event > & events ) {
   std::erase_if( events,
                  []( auto const & one ) { return std::holds_alternative< Kind >( one ); } );
}

void nothing( Told & ) {}

TEST( Judgement, FindsNothingOnARunAsItMustBe ) {
   EXPECT_EQ( foundOn( "two-leaves", nothing ), "" );
   EXPECT_EQ( foundOn( "two-leaves-class-id", nothing ), "" );
}

TEST( Judgement, FindsARuleThatNobodyCallsFor ) {
   std::string const found =
      foundOn( "two-leaves", []( Told & told ) { forget< Reference::VtepJoins >( told.before ); } );
   EXPECT_NE( found.find( "a rule that must not be there: unit 0 ingress 'Mark or drop packets at "
                          "IFP from vtep IP 10.0.0.2 on shared segments'" ),
              std::string::npos )
      << found;
   EXPECT_NE( found.find( "a call that must not be there: installEntry" ), std::string::npos );
}

TEST( Judgement, FindsARuleThatIsMissing ) {
   std::string const found = foundOn( "two-leaves", []( Told & told ) {
      told.before.emplace_back( Reference::VtepJoins{ Reference::Interface( "Port-Channel2" ),
                                                      Reference::Vtep( "10.0.0.3" ) } );
   } );
   EXPECT_NE( found.find( "a rule that must be there: unit 0 ingress 'Mark or drop packets at IFP "
                          "from vtep IP 10.0.0.3 on shared segments'" ),
              std::string::npos )
      << found;
}

TEST( Judgement, FindsAnotherPriority ) {
   std::string const found =
      foundOn( "two-leaves", []( Told & told ) { told.device.hasVniRules = false; } );
   EXPECT_NE( found.find( "a call that must not be there: setPriorityForEntry" ),
              std::string::npos )
      << found;
}

TEST( Judgement, FindsAFrameThatGoesElsewhere ) {
   std::string const found = foundOn( "two-leaves", []( Told & told ) {
      told.forwarding->notDesignated.insert( Reference::Interface( "Ethernet1" ) );
   } );
   EXPECT_NE( found.find( "a copy (by the rules) that must not be there: frame " ),
              std::string::npos )
      << found;
}

TEST( Judgement, FindsARequestThatNobodyMustMake ) {
   std::string const found = foundOn( "two-leaves-class-id", []( Told & told ) {
      forget< Reference::VtepJoins >( told.before );
   } );
   EXPECT_NE( found.find( "a class-id request that must not be there: 10.0.0.2" ),
              std::string::npos )
      << found;
}

TEST( Judgement, FindsAStopThatNothingForetells ) {
   std::string const found =
      foundOn( "limits/vni-in-two-vrfs", []( Told & told ) { told.steps.back().turns.clear(); } );
   EXPECT_NE( found.find( "it must not stop, but did at" ), std::string::npos ) << found;
}

TEST( Judgement, FindsAStopThatDoesNotCome ) {
   std::string const found = foundOn( "two-leaves", []( Told & told ) {
      for ( auto const * const vrf : { "red", "blue" } ) {
         told.before.emplace_back(
            Reference::VniIs{ Reference::Interface( "Vxlan1" ), vrf, 50001 } );
      }
   } );
   EXPECT_NE( found.find( "it must stop at '!evpnMultihomingLocalBiasSm()->vniToTcamEntryIdHas( "
                          "newV )' in handleVrfToVniMap" ),
              std::string::npos )
      << found;
}

TEST( Judgement, FindsAVerificationPassThatIsSkipped ) {
   Told const told = Reference::told( Steps::readScenario( fileOf( "vtep-flap" ) ) );
   Run::Document run = Run::of( fileOf( "vtep-flap" ) );
   auto const step = std::find_if( run.steps.begin(), run.steps.end(), []( Run::Step const & one ) {
      return one.text.find( "handleVerify" ) != std::string::npos;
   } );
   ASSERT_TRUE( step != run.steps.end() );
   step->pass = "skipped";
   Judgement const judgement = judge( told, run );
   ASSERT_TRUE( judgement.isOff() );
   EXPECT_EQ( judgement.differences.front(), "the verification pass must be held, and is skipped" );
}

TEST( Judgement, FindsARuleThatIsReadBackOtherwise ) {
   std::string const found =
      foundOn( "limits/port-swap-verify", []( Told & told ) { told.steps.back().turns.clear(); } );
   EXPECT_NE( found.find( "it must not stop, but did at" ), std::string::npos ) << found;
   EXPECT_NE( found.find( "a call that must not be there: getEgressMaskActionPbmp" ),
              std::string::npos )
      << found;
}

TEST( Judgement, FindsARunThatEndsTooEarly ) {
   std::string const found =
      foundOn( "start-up", []( Told & told ) { told.steps.resize( told.steps.size() + 2 ); } );
   EXPECT_NE( found.find( "step 9:\n   the run must go on, but ended here" ), std::string::npos )
      << found;
}

TEST( Judgement, FindsARunThatRefusesItsLastStep ) {
   Told const told = Reference::told( Steps::readScenario( fileOf( "start-up" ) ) );
   Run::Document run = Run::of( fileOf( "start-up" ) );
   run.steps.pop_back();
   run.error = "no such port";
   Judgement const judgement = judge( told, run );
   EXPECT_EQ( judgement.text(), "step 8:\n   the run must go on, but ended here. no such port" );
}

}  // namespace
