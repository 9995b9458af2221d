#include <Story/JsonWriter.h>

#include <sstream>

#include <gtest/gtest.h>

#include <OneOfEach.h>
#include <Restored.h>
#include <Stories.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Support.h>

namespace {

using namespace Stories;
using OrderedJson = nlohmann::ordered_json;

std::string textOf( Story::JsonWriter const & writer ) {
   std::ostringstream out;
   writer.write( out );
   return out.str();
}

// The document of a run that these events make up.
OrderedJson documentOf( std::initializer_list< std::vector< Story::Event > > parts ) {
   Story::JsonWriter writer;
   for ( auto const & events : parts ) {
      tell( writer, events );
   }
   return OrderedJson::parse( textOf( writer ) );
}

std::vector< std::string > namesIn( OrderedJson const & object ) {
   std::vector< std::string > names;
   for ( auto const & [ name, unused ] : object.items() ) {
      names.push_back( name );
   }
   return names;
}

using Names = std::vector< std::string >;

TEST( JsonWriter, HasTheNamesThatScriptsHoldOnTo ) {
   OrderedJson const document = documentOf( { startUp(), readyStep(), { Story::RunEnds{} } } );

   EXPECT_EQ( namesIn( document ),
              ( Names{ "formatVersion", "scenario", "file", "variant", "end", "assertion", "step",
                       "stop", "error", "warnings", "plugin", "steps", "rules", "frames", "log",
                       "counters" } ) );
   EXPECT_EQ( namesIn( document[ "steps" ][ 0 ] ),
              ( Names{ "number", "text", "place", "changes", "hardwareCalls", "rulesAdded",
                       "rulesChanged", "rulesRemoved", "log", "traces", "frames", "foreignEntries",
                       "dumps", "audits", "pluginPass", "expectations", "leftOut" } ) );
   EXPECT_EQ( namesIn( document[ "rules" ][ 0 ] ),
              ( Names{ "unit", "group", "id", "name", "priority", "written", "qualifiers",
                       "actions" } ) );
   EXPECT_EQ( namesIn( document[ "steps" ][ 1 ][ "hardwareCalls" ][ 0 ] ),
              ( Names{ "operation", "call", "unit", "entry", "values", "returnCode" } ) );
   EXPECT_EQ( namesIn( document[ "plugin" ] ),
              ( Names{ "file", "mounters", "mounts", "mountStatus", "mountProblems", "lookups",
                       "sharedEntities", "tcamGroups", "ready" } ) );
}

TEST( JsonWriter, HasTheSameNamesWhenNothingHappened ) {
   EXPECT_EQ( namesIn( documentOf( {} ) ),
              namesIn( documentOf( { startUp(), readyStep(), { Story::RunEnds{} } } ) ) );
}

TEST( JsonWriter, TellsWhatThePlugInAskedFor ) {
   OrderedJson const plugin = documentOf( { startUp(), readyStep() } )[ "plugin" ];

   EXPECT_EQ( plugin[ "file" ], "VornalEvpn.so" );
   EXPECT_EQ( plugin[ "mounters" ], OrderedJson::array( { "Vornal::VornalEvpnMounter" } ) );
   EXPECT_EQ( plugin[ "mounts" ][ 1 ],
              OrderedJson::object(
                 { { "path", "class/ids" }, { "type", "Class::Ids" }, { "flags", "wc" } } ) );
   EXPECT_EQ( plugin[ "mountStatus" ], "complete" );
   EXPECT_EQ( plugin[ "lookups" ][ 0 ][ "type" ], "Evpn::EvpnStatus" );
   EXPECT_EQ( plugin[ "lookups" ][ 1 ][ "type" ], nullptr );
   EXPECT_EQ( plugin[ "sharedEntities" ][ 0 ][ "name" ], "vornalCommon" );
   EXPECT_EQ( plugin[ "tcamGroups" ], OrderedJson::array( { 157 } ) );
   EXPECT_EQ( plugin[ "ready" ], true );
}

TEST( JsonWriter, TellsOfEachStepTheCallsAndRulesThatItCaused ) {
   OrderedJson const steps = documentOf( { startUp(), readyStep() } )[ "steps" ];

   ASSERT_EQ( steps.size(), 2U );
   EXPECT_EQ( steps[ 0 ][ "number" ], 0 );
   EXPECT_EQ( steps[ 0 ][ "place" ], nullptr );
   EXPECT_TRUE( steps[ 0 ][ "hardwareCalls" ].empty() );

   EXPECT_EQ( steps[ 1 ][ "text" ], "ready subagents::l2Ready" );
   EXPECT_EQ( steps[ 1 ][ "place" ], "start-up.yaml:12" );
   OrderedJson const & calls = steps[ 1 ][ "hardwareCalls" ];
   EXPECT_EQ( calls[ 0 ][ "operation" ], "getEntry" );
   EXPECT_EQ( calls[ 0 ][ "call" ], nullptr );
   EXPECT_EQ( calls[ 0 ][ "values" ], OrderedJson::object( { { "group", 157 } } ) );
   EXPECT_EQ( calls[ 0 ][ "returnCode" ], nullptr );
   EXPECT_EQ( calls[ 1 ][ "call" ], "call( unit )" );
   EXPECT_EQ( calls[ 1 ][ "returnCode" ], -2 );
   EXPECT_EQ( steps[ 1 ][ "rulesAdded" ].size(), 2U );
   EXPECT_TRUE( steps[ 1 ][ "rulesChanged" ].empty() );
}

TEST( JsonWriter, TellsOfAChangedRuleWhatItWasAndWhatItIs ) {
   OrderedJson const step =
      documentOf( { readyStep(),
                    { Stories::step( 2 ), Story::RuleIs{ rule( 2, true ) },
                      Story::RuleGone{ rule( 1 ).key }, Story::StepEnds{ 2 } } } )[ "steps" ][ 1 ];

   EXPECT_EQ( step[ "rulesChanged" ][ 0 ][ "before" ][ "written" ], false );
   EXPECT_EQ( step[ "rulesChanged" ][ 0 ][ "after" ][ "written" ], true );
   EXPECT_EQ( step[ "rulesRemoved" ][ 0 ][ "id" ], 1 );
}

TEST( JsonWriter, HasTheRulesAtTheEndWithDataMaskAndPorts ) {
   OrderedJson const rules = documentOf( { readyStep() } )[ "rules" ];

   ASSERT_EQ( rules.size(), 2U );
   EXPECT_EQ( rules[ 0 ],
              OrderedJson::parse( R"({ "unit": 0, "group": 157, "id": 1, "name": "Mark or drop",
                    "priority": 1, "written": true,
                    "qualifiers": { "SrcVxlanGport": { "data": 1442840578, "mask": 4294967295 },
                                    "PacketRes": { "data": 4, "mask": 255 } },
                    "actions": { "EgressMask": { "ports": [ 3, 4 ] } } })" ) );
}

TEST( JsonWriter, TellsThePartsOfAPortApartAndNullForTheDefaultPriority ) {
   Chip::Rule drop = rule( 3 );
   drop.content = {};
   drop.content[ Chip::Qualifier::DstPort ] = Chip::Match{ 5, 255, 1, 255 };
   drop.content[ Chip::Action::Drop ].emplace();

   OrderedJson const json = Story::jsonOf( drop );

   EXPECT_EQ( json[ "priority" ], nullptr );
   EXPECT_EQ( json[ "qualifiers" ][ "DstPort" ],
              OrderedJson::parse( R"({ "modId": { "data": 1, "mask": 255 },
                                "port": { "data": 5, "mask": 255 } })" ) );
   EXPECT_EQ( json[ "actions" ][ "Drop" ], OrderedJson::object() );
}

TEST( JsonWriter, SaysHowTheRunEnded ) {
   EXPECT_EQ( documentOf( { { step( 1 ), expectation( true ), Story::StepEnds{ 1 },
                              Story::RunEnds{} } } )[ "end" ],
              "completed" );
}

TEST( JsonWriter, SaysWhichExpectationFailedAndWhatWasFound ) {
   OrderedJson const document =
      documentOf( { { step( 1 ), expectation( true ), expectation( false ), Story::StepEnds{ 1 },
                      Story::RunEnds{} } } );

   EXPECT_EQ( document[ "end" ], "expectation-failed" );
   EXPECT_EQ( document[ "steps" ][ 0 ][ "expectations" ], OrderedJson::parse( R"([
                 { "text": "plug-in ready", "place": "start-up.yaml:14", "held": true, "found": null },
                 { "text": "plug-in ready", "place": "start-up.yaml:14", "held": false,
                   "found": "it is not ready" } ])" ) );
}

TEST( JsonWriter, SaysWhereAndWhyThePlugInStopped ) {
   OrderedJson const document = documentOf(
      { startUp(), readyStep(), { step( 2 ), Story::RuleIs{ rule( 9, false ) }, stopped() } } );

   EXPECT_EQ( document[ "end" ], "stopped" );
   EXPECT_EQ( document[ "step" ], 2 );
   EXPECT_EQ( document[ "assertion" ],
              OrderedJson::object( { { "file", "Sm.cpp" },
                                     { "line", 117 },
                                     { "function", "void Vornal::Sm::add()" },
                                     { "expression", "count < 2" } } ) );
   EXPECT_EQ( document[ "stop" ][ "reason" ], "signal 6 (Aborted)" );
   EXPECT_EQ( document[ "stop" ][ "output" ].size(), 1U );
   EXPECT_EQ( document[ "stop" ][ "traces" ][ 0 ][ "handle" ], "VornalEvpnSm" );
   EXPECT_EQ( document[ "steps" ][ 2 ][ "rulesAdded" ][ 0 ][ "id" ], 9 );
}

TEST( JsonWriter, NamesTheKnownLimitsThatAStopMayBe ) {
   Story::Stopped stop = stopped();
   EXPECT_EQ( documentOf( { readyStep(), { stop } } )[ "stop" ][ "limits" ], OrderedJson::array() );

   stop.assertion =
      Story::Assertion{ "PerVniMulticast.cpp", 1, "void Vornal::Sm::handleVrfToVniMap(U32)",
                        "!evpnMultihomingLocalBiasSm()->vniToTcamEntryIdHas( newV )" };
   OrderedJson const limits =
      documentOf( { readyStep(),
                    { step( 2 ), Story::PublishedChange{ "/v", "vrfToVniMap", "red", {}, "1" },
                      stop } } )[ "stop" ][ "limits" ];
   ASSERT_GE( limits.size(), 2U );
   EXPECT_EQ( namesIn( limits[ 0 ] ), ( Names{ "title", "remedy" } ) );
}

TEST( JsonWriter, IsUtf8WithoutControlCharactersAndKeepsThoseOfTexts ) {
   std::string const text = "\x1b[31m\x7f M\xc3\xbcnchen \xc2\x9b";
   Story::JsonWriter writer;
   tell( writer, { Story::RunBegins{ "s.yaml", text, "", 1 }, step( 1 ), Story::Logged{ "N", text },
                   stopped() } );
   tell( writer, { Story::Stopped{ "signal 6", {}, { "\xff no UTF-8 \xc2" }, {} } } );
   std::ostringstream out;
   writer.write( out );

   std::string const document = out.str();
   for ( char const c : document ) {
      EXPECT_TRUE( c == '\n' || static_cast< unsigned char >( c ) >= ' ' )
         << static_cast< int >( c );
      EXPECT_NE( c, '\x7f' );
   }
   EXPECT_EQ( document.find( '\xc2' ), std::string::npos );
   EXPECT_EQ( OrderedJson::parse( document )[ "scenario" ], text );
   EXPECT_EQ( OrderedJson::parse( document )[ "stop" ][ "output" ][ 0 ],
              "\xef\xbf\xbd no UTF-8 \xef\xbf\xbd" );
}

TEST( JsonWriter, CanTellOfAStopBeforeTheFirstStep ) {
   OrderedJson const document = documentOf( { { stopped() } } );

   EXPECT_EQ( document[ "end" ], "stopped" );
   EXPECT_EQ( document[ "step" ], nullptr );
}

TEST( JsonWriter, Counts ) {
   OrderedJson const counters = documentOf(
      { startUp(),
        readyStep(),
        { step( 2 ), Story::Logged{ "FULL", "%VORNAL-3-FULL: no room" },
          Story::Traced{ "h", 1, "t" }, expectation( false ), Story::RuleGone{ rule( 1 ).key },
          Story::StepEnds{ 2 }, Story::RunEnds{} } } )[ "counters" ];

   EXPECT_EQ( counters,
              OrderedJson::parse( R"({ "steps": 3, "publishedChanges": 1, "hardwareCalls": 2,
                 "failedCalls": 1, "rulesAdded": 2, "rulesChanged": 0, "rulesRemoved": 1,
                 "logLines": 1, "traceLines": 1, "frames": 0, "expectations": 1,
                 "expectationsFailed": 1, "framesDropped": {}, "copies": {} })" ) );
}

TEST( JsonWriter, TellsLogLinesWithTheirStep ) {
   OrderedJson const document = documentOf(
      { { step( 4 ), Story::Logged{ "FULL", "%VORNAL-3-FULL: x" }, Story::StepEnds{ 4 } } } );

   EXPECT_EQ( document[ "log" ],
              OrderedJson::parse(
                 R"([ { "step": 4, "name": "FULL", "line": "%VORNAL-3-FULL: x" } ])" ) );
   EXPECT_EQ( document[ "steps" ][ 0 ][ "log" ], OrderedJson::array( { "%VORNAL-3-FULL: x" } ) );
}

TEST( JsonForms, ShowAnEntityWithItsAttributesByName ) {
   using Kind = Kiv::Attribute::Kind;
   Story::EntityTree const segment{
      "S", "Ethernet1", "", { { "remoteTep", Kind::Set, { { "10.0.0.2", "", {} } } } }
   };
   Story::EntityTree const elsewhere{ "T", "t", "/t", {} };
   Story::EntityTree const tree{
      "E",
      "status",
      "",
      { { "segment", Kind::Members, { { "Ethernet1", "", { segment } } } },
        { "count", Kind::Value, { { "", "7", {} } } },
        { "byKey", Kind::Collection, { { "k", "v", {} } } },
        { "reference", Kind::Reference, { { "", "", { elsewhere } } } },
        { "empty", Kind::Reference, { { "", "", {} } } } }
   };

   EXPECT_EQ( jsonOf( tree ), OrderedJson::parse( R"({
      "type": "E", "identity": "status", "attributes": {
         "segment": { "Ethernet1": { "type": "S", "identity": "Ethernet1",
                                     "attributes": { "remoteTep": [ "10.0.0.2" ] } } },
         "count": "7",
         "byKey": { "k": "v" },
         "reference": { "type": "T", "identity": "t", "shownAt": "/t" },
         "empty": null } })" ) );
}

TEST( JsonWriter, SaysWhatWasWrongWithTheInputAndWhatHadHappenedUntilThen ) {
   OrderedJson const document =
      documentOf( { startUp(),
                    readyStep(),
                    { step( 2 ), Story::RuleIs{ rule( 3 ) },
                      Story::BadInput{ "leaf.yaml:7: no such entity" } } } );

   EXPECT_EQ( document[ "end" ], "failed" );
   EXPECT_EQ( document[ "error" ], "leaf.yaml:7: no such entity" );
   EXPECT_EQ( document[ "step" ], 2 );
   EXPECT_EQ( document[ "stop" ], nullptr );
   EXPECT_EQ( document[ "rules" ].size(), 3U );
   EXPECT_EQ( document[ "steps" ][ 2 ][ "rulesAdded" ].size(), 1U );
}

TEST( JsonWriter, TellsWarningsWithTheirStepAndEndsAsItWouldWithout ) {
   OrderedJson const document =
      documentOf( { startUp(),
                    { step( 1 ), Story::Warning{ "leaf.yaml:7: no handle" }, Story::StepEnds{ 1 },
                      Story::RunEnds{} } } );
   EXPECT_EQ( document[ "warnings" ],
              OrderedJson::parse( R"([ { "step": 1, "text": "leaf.yaml:7: no handle" } ])" ) );
   EXPECT_EQ( document[ "end" ], "completed" );
}

TEST( JsonWriter, CountsWhatAStepWithoutEndHasTooManyOf ) {
   constexpr std::size_t kMost = 2;
   Story::JsonWriter writer( std::nullopt, kMost );
   writer.onEvent( Story::StepBegins{ Story::StepKind::Scenario, 1, "the step", "" } );
   writer.onEvent( Story::Logged{ "NAME", "the only line" } );
   for ( U32 entry = 1; entry <= 5; ++entry ) {
      writer.onEvent( Story::CallMade{ { "entryNew", "", 0, entry, {}, {} } } );
      writer.onEvent( Story::Traced{ "Handle", 0, "text" } );
   }
   std::ostringstream out;
   writer.write( out );
   OrderedJson const document = OrderedJson::parse( out.str() );
   OrderedJson const & step = document[ "steps" ][ 0 ];

   EXPECT_EQ( step[ "hardwareCalls" ].size(), kMost );
   EXPECT_EQ( step[ "hardwareCalls" ][ 1 ][ "entry" ], 2 );
   EXPECT_EQ( step[ "traces" ].size(), kMost );
   EXPECT_EQ( step[ "log" ].size(), 1U );
   EXPECT_EQ( step[ "leftOut" ], ( OrderedJson{ { "hardwareCalls", 3 }, { "traces", 3 } } ) );
   EXPECT_EQ( document[ "counters" ][ "hardwareCalls" ], 5 );
}

// --- Frames, which wait on disk

std::vector< Story::Event > threeFrames() {
   return { step( 1 ), Story::FrameForwarded{ 7, OneOfEach::someFrame() },
            Story::FrameForwarded{ 8, OneOfEach::someFrame() },
            Story::FrameForwarded{ 9, OneOfEach::someFrame() }, Story::StepEnds{ 1 } };
}

TEST( JsonWriter, WritesFramesAsIfTheyHadBeenInMemoryEachTime ) {
   Story::JsonWriter writer;
   tell( writer, threeFrames() );
   OrderedJson withFrames = documentOf( { threeFrames() } );
   ASSERT_EQ( withFrames[ "frames" ].size(), 3U );
   EXPECT_EQ( withFrames[ "frames" ][ 2 ][ "number" ], 9 );
   EXPECT_EQ( withFrames[ "frames" ][ 2 ][ "step" ], 1 );

   withFrames.erase( "formatVersion" );
   EXPECT_EQ( textOf( writer ), Story::documentText( withFrames ) );
   EXPECT_EQ( textOf( writer ), Story::documentText( withFrames ) );
}

TEST( JsonWriter, WritesNothingWhenTheDiskDoesNotTakeTheFrames ) {
   Restored::RoomInFiles const noRoom( 0 );
   Story::JsonWriter writer;
   tell( writer, { step( 1 ), Story::FrameForwarded{ 7, OneOfEach::someFrame() } } );
   std::ostringstream out;

   EXPECT_THROW( writer.write( out ), Story::InputError );
   EXPECT_EQ( out.str(), "" );
}

TEST( JsonWriter, OfAStepAloneNeedsNoDisk ) {
   Restored::Variable const noFolder( "TMPDIR", "/nowhere" );
   Story::JsonWriter alone( 1 );
   tell( alone, threeFrames() );
   Story::JsonWriter later( 2 );
   tell( later, threeFrames() );

   EXPECT_EQ( OrderedJson::parse( textOf( alone ) )[ "frames" ],
              OrderedJson::array( { 7, 8, 9 } ) );
   EXPECT_EQ( textOf( later ), "null\n" );
}

TEST( JsonWriter, IsSilentInTheProgramWhenThereIsNoTemporaryFolder ) {
   auto const ran =
      Support::vornal( { "run", VORNAL_SOURCE_DIR "/scenarios/two-leaves/scenario.yaml", "--json" },
                       { "TMPDIR=/nowhere" } );

   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_EQ( ran.err,
              "the frames of the document find no room in /nowhere (No such file or "
              "directory); name another folder in TMPDIR\n" );
}

TEST( JsonWriter, SaysInWhichStepTheRunWasInterrupted ) {
   OrderedJson const document = documentOf(
      { startUp(), readyStep(), { step( 2 ), Story::Interrupted{ 2, "signal 2 (Interrupt)" } } } );

   EXPECT_EQ( document[ "end" ], "interrupted" );
   EXPECT_EQ( document[ "step" ], 2 );
   EXPECT_EQ( document[ "error" ], nullptr );
   EXPECT_EQ( document[ "rules" ].size(), 2U );
}

}  // namespace
