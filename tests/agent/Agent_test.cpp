#include <Host/Agent.h>

#include <gtest/gtest.h>

#include <AgentRun.h>
#include <Snapshot/RuleText.h>

namespace {

using Agent = AgentRun;
using Operations = std::vector< std::string >;

// --- Start-up

TEST_F( Agent, PublishesTheStateBeforeItLoadsThePlugIn ) {
   run( "   - note: nothing\n" );

   std::size_t const published =
      story.placeOf< Story::PublishedChange >( []( auto const & change ) {
         return change.path == "/evpn/status/segmentStatus[Ethernet1]" && change.key == "10.0.0.2";
      } );
   std::size_t const loaded =
      story.placeOf< Story::PluginLoaded >( []( auto const & ) { return true; } );
   EXPECT_LT( published, loaded );
   EXPECT_LT( loaded, story.events().size() );
}

TEST_F( Agent, PublishesEveryKindOfState ) {
   run( "   - note: nothing\n" );

   std::vector< std::string > places;
   for ( auto const & change : story.all< Story::PublishedChange >() ) {
      places.push_back( change.path + "/" + change.attribute + "[" + change.key +
                        "]=" + change.to.value_or( "" ) );
   }
   for ( char const * const expected :
         { "/shared/vornalCommon/vornalIntfToPort[Ethernet1]=unit0/port1/mod1",
           "/lag/config/phyIntf[Ethernet4]/lag[]=Port-Channel7",
           "/evpn/status/segmentStatus[Ethernet1]=Evpn::EthernetSegmentStatus Ethernet1",
           "/interface/status/eth/vxlan/vtiStatus[Vxlan1]/vrfToVniMap[red]=50001" } ) {
      EXPECT_NE( std::find( places.begin(), places.end(), expected ), places.end() ) << expected;
   }
   EXPECT_LT( story.placeOf< Story::PublishedChange >( []( auto const & change ) {
      return change.path == "/hardware/vornal/vp/status/vornalL3" && change.to == "2";
   } ),
              story.events().size() );
}

TEST_F( Agent, LetsAnInterfaceEnterTheCachedMapBeforeTheLiveOneAnnouncesIt ) {
   run( "   - note: nothing\n" );

   auto const entersAt = [ & ]( char const * map ) {
      return story.placeOf< Story::PublishedChange >( [ & ]( auto const & change ) {
         return change.attribute == map && change.key == "Ethernet2";
      } );
   };
   EXPECT_LT( entersAt( "vornalIntfToPortCache" ), entersAt( "vornalIntfToPort" ) );
}

TEST_F( Agent, TellsStartUpInTheOrderInWhichItHappens ) {
   run( "   - note: nothing\n" );

   EXPECT_EQ( inStep< Story::MountAsked >( 0 ).size(), 2U );
   EXPECT_EQ( inStep< Story::MountsDone >( 0 ).at( 0 ).status, "complete" );
   EXPECT_EQ( inStep< Story::EntityLookedUp >( 0 ).at( 0 ).type, "Evpn::EvpnStatus" );
   EXPECT_EQ( inStep< Story::SharedEntityAsked >( 0 ).at( 0 ).type, "Vornal::VornalCommonSmData" );
   EXPECT_EQ( inStep< Story::Traced >( 0 ).at( 0 ).text, "Sample::Mounter::doInit" );
   EXPECT_TRUE( inStep< Story::TcamGroupAsked >( 0 ).empty() );
}

TEST_F( Agent, StartsThePlugInWhenTheSubAgentIsReadyAndTellsTheVariantBeforeReady ) {
   run( "   - ready: subagents::l2Ready\n" );

   auto const points = inStep< Story::DependencyPointReady >( 1 );
   ASSERT_EQ( points.size(), 2U );
   EXPECT_EQ( points[ 0 ].point, "subagents::l2Ready" );
   EXPECT_FALSE( points[ 0 ].isOfPlugin );
   EXPECT_EQ( points[ 1 ].point, "evpn" );
   EXPECT_TRUE( points[ 1 ].isOfPlugin );

   EXPECT_EQ( inStep< Story::TcamGroupAsked >( 1 ).at( 0 ).group, 157U );
   auto const variants = story.all< Story::VariantChosen >();
   ASSERT_EQ( variants.size(), 1U );
   EXPECT_EQ( variants[ 0 ].variant, "Sample::SegmentRulesWithEgressMaskSm" );
   EXPECT_EQ( variants[ 0 ].type, "Sample::SegmentRulesWithEgressMaskSm" );
   EXPECT_LT( story.placeOf< Story::VariantChosen >( []( auto const & ) { return true; } ),
              story.placeOf< Story::DependencyPointReady >(
                 []( auto const & ready ) { return ready.isOfPlugin; } ) );
}

TEST_F( Agent, HasNoGroupThatTheScenarioSaysIsNotThere ) {
   run(
      "   - ready: subagents::l2Ready\n"
      "   - withdraw: { segments: [ Ethernet1 ] }\n",
      "{ ingress: 0, egress: none }" );

   EXPECT_TRUE( inStep< Story::TcamGroupAsked >( 1 ).at( 0 ).isThere );
   EXPECT_EQ( inStep< Story::CallMade >( 1 ).at( 0 ).call.entry, 0U );
}

// --- Steps

TEST_F( Agent, GivesEveryEffectToTheStepThatCausedIt ) {
   run(
      "   - ready: subagents::l2Ready\n"
      "   - publish: { segments: { Ethernet2: [] } }\n"
      "   - withdraw: { segments: [ Ethernet1 ] }\n" );

   EXPECT_EQ( operationsIn( 1 ),
              ( Operations{ "getEntry", "bcm_field_qualify_PacketRes", "addEgressMaskAction",
                            "setPriorityForEntry", "installEntry" } ) );
   EXPECT_EQ( operationsIn( 2 ), operationsIn( 1 ) );
   EXPECT_EQ( operationsIn( 3 ), Operations{ "releaseEntry" } );
   EXPECT_EQ( inStep< Story::RuleGone >( 3 ).at( 0 ).key.id, 1U );
}

TEST_F( Agent, TellsAGuardedCallAsItsCallerWroteItAndItsValuesByName ) {
   run( "   - ready: subagents::l2Ready\n" );

   auto const call = inStep< Story::CallMade >( 1 ).at( 1 ).call;
   EXPECT_EQ( call.callText,
              "bcm_field_qualify_PacketRes( unit, entryId, BCM_FIELD_PKT_RES_L2UC, 0xff )" );
   EXPECT_EQ( call.unit, 0U );
   EXPECT_EQ( call.entry, 1U );
   ASSERT_EQ( call.values.size(), 2U );
   EXPECT_EQ( call.values[ 1 ].name, "mask" );
   EXPECT_EQ( std::get< U32 >( call.values[ 1 ].value ), 0xffU );
   EXPECT_EQ( call.returnCode, 0 );
}

TEST_F( Agent, TellsARuleAfterEveryCallThatChangedIt ) {
   run( "   - ready: subagents::l2Ready\n" );

   auto const rules = inStep< Story::RuleIs >( 1 );
   ASSERT_EQ( rules.size(), 5U );
   EXPECT_EQ( rules[ 0 ].rule.content, Chip::EntryContent() );
   EXPECT_FALSE( rules[ 3 ].rule.isWritten );
   EXPECT_TRUE( rules[ 4 ].rule.isWritten );
   EXPECT_EQ( rules[ 4 ].rule.name, "Sample Ethernet1" );
   EXPECT_EQ( rules[ 4 ].rule.content.priority, 1U );
   EXPECT_EQ(
      bodyText( rules[ 4 ].rule ),
      "matches PacketRes 4 mask 0xff (known unicast); does EgressMask ports 3; priority 1" );
}

TEST_F( Agent, MakesEveryPublishedChangeATurnOfItsOwnInTheOrderWritten ) {
   run(
      "   - ready: subagents::l2Ready\n"
      "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n",
      "{ ingress: 1 }" );

   std::vector< std::string > lines;
   for ( auto const & event : story.events() ) {
      if ( auto const * const change = std::get_if< Story::PublishedChange >( &event ) ) {
         lines.push_back( change->attribute + " " + change->key );
      } else if ( auto const * const log = std::get_if< Story::Logged >( &event ) ) {
         lines.push_back( log->line );
      }
   }
   // The group was full for the second segment: its log line stands between its own two changes.
   std::vector< std::string > const tail( lines.end() - 4, lines.end() );
   EXPECT_EQ( tail, ( std::vector< std::string >{
                       "segmentStatus Ethernet2", "exhausted 0",
                       "%VORNAL-3-SAMPLE_GROUP_FULL: No room for segment Ethernet2",
                       "remoteTep 10.0.0.9" } ) );
}

TEST_F( Agent, WithdrawsWhatWasPublished ) {
   run(
      "   - withdraw: { interfaces: [ Ethernet1 ] }\n"
      "   - withdraw: { port-channels: { Port-Channel7: [ Ethernet4 ] } }\n"
      "   - withdraw: { segments: { Ethernet1: [ 10.0.0.2 ] } }\n"
      "   - withdraw: { vteps: [ 10.0.0.2 ] }\n"
      "   - withdraw: { tunnel-interfaces: { Vxlan1: [ red ] } }\n"
      "   - withdraw: { tunnel-interfaces: [ Vxlan1 ] }\n" );

   auto const changeOf = [ & ]( U32 step ) {
      auto const changes = inStep< Story::PublishedChange >( step );
      return changes.size() == 1 ? changes[ 0 ].attribute + " " + changes[ 0 ].key + " " +
                                      changes[ 0 ].to.value_or( "gone" )
                                 : std::to_string( changes.size() ) + " changes";
   };
   EXPECT_EQ( changeOf( 1 ), "vornalIntfToPort Ethernet1 gone" );
   EXPECT_EQ( changeOf( 2 ), "lag  " );
   EXPECT_EQ( changeOf( 3 ), "remoteTep 10.0.0.2 gone" );
   EXPECT_EQ( changeOf( 4 ).substr( 0, 11 ), "remoteVport" );
   EXPECT_EQ( changeOf( 5 ), "vrfToVniMap red gone" );
   EXPECT_EQ( changeOf( 6 ), "vtiStatus Vxlan1 gone" );
}

TEST_F( Agent, DoesNotTakeAMemberFromAPortChannelThatItIsNotIn ) {
   run(
      "   - set: { entity: '/lag/config/phyIntf[Ethernet4]', attribute: lag, value: "
      "Port-Channel8 }\n"
      "   - withdraw: { port-channels: { Port-Channel7: [ Ethernet4 ] } }\n" );

   EXPECT_EQ( inStep< Story::PublishedChange >( 1 ).size(), 1U );
   EXPECT_TRUE( inStep< Story::PublishedChange >( 2 ).empty() );
}

TEST_F( Agent, ReachesEveryAttributeAndOperationByPath ) {
   run(
      "   - set: { entity: '/evpn/status/segmentStatus[Ethernet1]', attribute: remoteTep, key: "
      "10.0.0.7 }\n"
      "   - delete: { entity: /evpn/status, attribute: segmentStatus, key: Ethernet1 }\n"
      "   - call: { entity: /plugins/Sample::Mounter, operation: finishInit }\n"
      "   - set: { entity: /plugins/Sample::Mounter, attribute: evpnStatus, value: /evpn/status }\n"
      "   - delete: { entity: /plugins/Sample::Mounter, attribute: evpnStatus }\n"
      "   - expect: { state: { entity: /plugins/Sample::Mounter, attribute: evpnStatus, equals: "
      "none } }\n" );

   EXPECT_EQ( inStep< Story::PublishedChange >( 1 ).at( 0 ).key, "10.0.0.7" );
   EXPECT_EQ( inStep< Story::PublishedChange >( 2 ).at( 0 ).to, std::nullopt );
   EXPECT_EQ( inStep< Story::DependencyPointReady >( 3 ).size(), 1U );
   EXPECT_EQ( held(), std::vector< bool >{ true } );
}

TEST_F( Agent, EndsAtAStepThatNamesWhatIsNotThereWithItsPlace ) {
   run(
      "   - note: first\n"
      "   - set: { entity: /evpn/status, attribute: segments, key: Ethernet2 }\n"
      "   - note: never reached\n" );

   EXPECT_EQ( badInput(),
              "leaf.yaml:21: an Evpn::EvpnStatus has no attribute 'segments'; it has "
              "segmentStatus" );
   EXPECT_TRUE( inStep< Story::StepBegins >( 3 ).empty() );
   EXPECT_TRUE( std::holds_alternative< Story::BadInput >( story.events().back() ) );
}

TEST_F( Agent, RefusesValuesKeysAndArgumentsThatAreNotOfTheirType ) {
   struct Case {
      char const * step;
      char const * refusal;
   };
   for ( Case const & one :
         { Case{ "set: { entity: /evpn/status, attribute: segmentStatus, key: Ether }", "'Ether'" },
           Case{ "set: { entity: '/lag/config/phyIntf[Ethernet4]', attribute: lag, key: k, value: "
                 "Port-Channel7 }",
                 "attribute 'lag' has no keys; leave the key out" },
           Case{
              "call: { entity: /plugins/Sample::Mounter, operation: finishInit, arguments: [ 1 ] }",
              "has no operation 'finishInit' that takes 1 argument; it has " },
           Case{ "call: { entity: /evpn/status, operation: clear }",
                 "has no operation 'clear' that takes 0 arguments; it has no operations" },
           Case{
              "set: { entity: /shared/vornalCommon, attribute: vornalModId, key: 0 }",
              "attribute 'vornalModId' is not set: expected a number of type U16 at character 1, "
              "found the end of the text; give its value with 'value'" },
           Case{ "set: { entity: /plugins/Sample::Mounter, attribute: evpnStatus }",
                 "attribute 'evpnStatus' refers to an entity; give its path with 'value'" },
           Case{ "set: { entity: /plugins/Sample::Mounter, attribute: evpnStatus, value: "
                 "/lag/config }",
                 "not a Lag::Config" } } ) {
      Support::Recorder refused;
      scenario =
         Steps::readScenarioText( Switches::leaf( std::string( "   - " ) + one.step + "\n" ),
                                  "leaf.yaml" );
      Host::Agent( scenario, { "leaf.yaml", Support::testPlugin( "segment-rules" ), {}, {}, {} },
                   ring.bytes(), refused )
         .run();

      auto const told = refused.all< Story::BadInput >();
      ASSERT_EQ( told.size(), 1U ) << one.step;
      EXPECT_EQ( told[ 0 ].text.find( "leaf.yaml:20: " ), 0U ) << told[ 0 ].text;
      EXPECT_NE( told[ 0 ].text.find( one.refusal ), std::string::npos ) << told[ 0 ].text;
   }
}

// --- Expectations

TEST_F( Agent, ChecksEveryKindOfExpectation ) {
   std::string const expectations =
      "   - expect:\n"
      "      - plug-in: ready\n"
      "      - tcam-groups: [ ingress ]\n"
      "      - state: { entity: /evpn/status, attribute: segmentStatus, has: Ethernet1 }\n"
      "      - state: { entity: /evpn/status, attribute: segmentStatus, lacks: Ethernet2 }\n"
      "      - state: { entity: /shared/vornalCommon, attribute: vornalModId, key: 0, equals: 1 }\n"
      "      - rules: { group: ingress, count: 1 }\n"
      "      - rules: { group: egress, unit: 0, count: 0 }\n"
      "      - trace: { handle: Sample, level: 5, text: Ethernet1, times: 1 }\n"
      "      - log: { text: SAMPLE_GROUP_FULL, times: 0 }\n";
   run( "   - ready: subagents::l2Ready\n" + expectations );

   EXPECT_EQ( held(), std::vector< bool >( 9, true ) );
}

TEST_F( Agent, SaysWhatWasFoundWhenAnExpectationDoesNotHold ) {
   run(
      "   - expect:\n"
      "      - plug-in: ready\n"
      "      - tcam-groups: [ ingress ]\n"
      "      - state: { entity: /evpn/status, attribute: segmentStatus, has: Ethernet2 }\n"
      "      - state: { entity: /shared/vornalCommon, attribute: vornalModId, key: 0, equals: 2 }\n"
      "      - state: { entity: /shared/vornalCommon, attribute: vornalModId, key: 5, equals: 2 }\n"
      "      - state: { entity: '/evpn/status/segmentStatus[Ethernet2]', attribute: remoteTep, "
      "has: 10.0.0.2 }\n"
      "      - rules: { group: ingress, count: 1 }\n"
      "      - log: anything\n" );

   std::vector< std::string > found;
   for ( auto const & expectation : story.all< Story::ExpectationChecked >() ) {
      EXPECT_FALSE( expectation.held );
      found.push_back( expectation.found );
   }
   EXPECT_EQ( found,
              ( std::vector< std::string >{
                 "it is not ready", "it asked for none", "it lacks Ethernet2; it has Ethernet1",
                 "it is 1", "there is no key 5",
                 "there is no entity at '/evpn/status/segmentStatus[Ethernet2]': 'segmentStatus' "
                 "has no key 'Ethernet2'; it has Ethernet1",
                 "there are 0; the group has no other rules", "it is there 0 times" } ) );
   EXPECT_EQ( story.all< Story::ExpectationChecked >().at( 0 ).place, "leaf.yaml:21" );
}

TEST_F( Agent, NamesTheRuleThatComesNearestAndWhatDiffers ) {
   run(
      "   - ready: subagents::l2Ready\n"
      "   - publish: { segments: { Ethernet2: [] } }\n"
      "   - expect:\n"
      "      - rules: { group: ingress, name: Ethernet2, priority: 2, actions: { EgressMask: [ 4 ] "
      "} }\n"
      "      - rules: { group: ingress, name: Sample, count: 3 }\n"
      "      - rules: { group: ingress, name: Sample, count: 1 }\n"
      "      - rules: { group: ingress, name: Ethernet, qualifiers: { IpType: }, count: 1 }\n"
      "      - rules: { group: ingress, name: Ethernet, qualifiers: { PacketRes: 5 } }\n" );

   std::vector< std::string > found;
   for ( auto const & expectation : story.all< Story::ExpectationChecked >() ) {
      found.push_back( expectation.found );
   }
   EXPECT_EQ( found, ( std::vector< std::string >{
                        "there are 0; the nearest is unit 0, ingress group 157, entry 2, \"Sample "
                        "Ethernet2\", which has priority 1 and EgressMask ports 3",
                        "there are 2; the group has no other rules", "there are 2",
                        "there are 0; the nearest is unit 0, ingress group 157, entry 1, \"Sample "
                        "Ethernet1\", which has no IpType",
                        "there are 0; the nearest is unit 0, ingress group 157, entry 1, \"Sample "
                        "Ethernet1\", which has PacketRes 4 mask 0xff (known unicast)" } ) );
}

TEST_F( Agent, GoesOnAfterAnExpectationThatDidNotHold ) {
   run(
      "   - expect: { plug-in: ready }\n"
      "   - ready: subagents::l2Ready\n"
      "   - expect: { plug-in: ready }\n" );

   EXPECT_EQ( held(), ( std::vector< bool >{ false, true } ) );
   EXPECT_TRUE( std::holds_alternative< Story::RunEnds >( story.events().back() ) );
}

// --- What is asked to be shown, traced

TEST_F( Agent, ShowsAnEntityOfThePlugInAsItIsAfterTheLastStep ) {
   Host::AgentConfig config;
   config.show = StateDatabase::EntityPath::fromString(
      "/plugins/Sample::Mounter/evpnMultihomingLocalBiasSm" );
   run( "   - ready: subagents::l2Ready\n", "{ ingress: 8 }", config );

   auto const shown = story.all< Story::EntityShown >();
   ASSERT_EQ( shown.size(), 1U );
   EXPECT_EQ( shown[ 0 ].tree.type, "Sample::SegmentRulesWithEgressMaskSm" );
   EXPECT_EQ( shown[ 0 ].tree.attributes.at( 0 ).items.at( 0 ).entity.at( 0 ).shownAt,
              "/evpn/status" );
   EXPECT_EQ( shown[ 0 ].tree.attributes.at( 1 ).items.at( 0 ).key, "Ethernet1" );
}

TEST_F( Agent, ListsThePathsAtWhichEntitiesAre ) {
   Host::AgentConfig config;
   config.show = Host::AgentConfig::Paths{};
   run( "   - note: nothing\n", "{ ingress: 8 }", config );

   std::vector< std::string > paths;
   for ( auto const & shown : story.all< Story::EntityShown >() ) {
      paths.push_back( shown.path );
   }
   EXPECT_EQ( paths, ( std::vector< std::string >{
                        "/bridging/hwcapabilities", "/evpn/status",
                        "/hardware/vornal/centralStatus/vxlanCapabilities",
                        "/hardware/vornal/i2eclassid/config/slice/3",
                        "/hardware/vornal/i2eclassid/status/slice/3",
                        "/hardware/vornal/vp/status/vornalL3", "/interface/status/eth/vxlan",
                        "/lag/config", "/plugins/Sample::Mounter", "/shared/tcamManager",
                        "/shared/vornalAttributes", "/shared/vornalCommon" } ) );
}

TEST_F( Agent, GivesTheLastWordOnTraceLevelsToWhoRunsIt ) {
   Host::AgentConfig config;
   config.trace = { { "Sample", "8" } };
   run( "   - ready: subagents::l2Ready\n", "{ ingress: 8 }", config );

   EXPECT_EQ( inStep< Story::Traced >( 0 ).size(), 1U );
   EXPECT_TRUE( inStep< Story::Traced >( 1 ).empty() );
}

// --- Loading and unloading

TEST_F( Agent, SaysWhyAPlugInCannotBeLoaded ) {
   Support::Directory const directory;
   Host::AgentConfig config;
   config.plugin = directory.file( "text.so", "this is no shared object" );
   run( "   - note: nothing\n", "{ ingress: 8 }", config );

   EXPECT_EQ(
      badInput(),
      config.plugin.string() +
         " is no shared object of this machine; --plugin takes the plug-in's shared object" );
}

TEST_F( Agent, SaysThatASharedObjectWithoutAMounterIsNoPlugIn ) {
   Host::AgentConfig config;
   config.plugin = Support::testPlugin( "no-mounter" );
   run( "   - note: nothing\n", "{ ingress: 8 }", config );

   EXPECT_NE( badInput().find( "no-mounter.so registers no mounter" ), std::string::npos );
}

TEST_F( Agent, LeavesTheRulesInTheChipAndNothingOfItsOwnBehind ) {
   run( "   - ready: subagents::l2Ready\n" );

   EXPECT_TRUE( operationsIn( 2 ).empty() );
   EXPECT_TRUE( std::holds_alternative< Story::RunEnds >( story.events().back() ) );
   EXPECT_EQ( Shim::sdk_, nullptr );
   EXPECT_FALSE( Kiv::hasActivityManager() );
}

TEST_F( Agent, CanRunASecondTimeInTheSameProcess ) {
   run( "   - ready: subagents::l2Ready\n" );
   std::size_t const events = story.events().size();

   run( "   - ready: subagents::l2Ready\n" );

   EXPECT_EQ( story.events().size(), 2 * events );
}

}  // namespace
