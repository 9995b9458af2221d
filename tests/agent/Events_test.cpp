// The events of a run as lines of JSON, and the document that lists them.
#include <map>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include <AgentRun.h>
#include <OneOfEach.h>
#include <Reporters/ClockReporter.h>
#include <Story/EventLines.h>
#include <Story/JsonForms.h>

namespace {

using Names = std::set< std::string >;

std::vector< Story::Json > linesOf( std::string const & text ) {
   std::vector< Story::Json > lines;
   std::istringstream in( text );
   for ( std::string line; std::getline( in, line ); ) {
      lines.push_back( Story::Json::parse( line ) );
   }
   return lines;
}

// --- The lines

TEST( EventLines, HaveTheNameOfTheEventAndItsFieldsInTheFormsOfTheDocument ) {
   std::ostringstream out;
   Story::EventLines lines( out );
   lines.onEvent( Story::StepBegins{ Story::StepKind::StartUp, 0, "text", "" } );
   lines.onEvent( Story::RuleGone{ { 1, 157, 9 } } );
   lines.onEvent( Story::PluginPass{ Story::PluginPass::State::Held } );
   lines.onEvent( Story::EntityLookedUp{ "nothing", "" } );

   EXPECT_EQ( out.str(), R"({"event":"stepBegins","kind":"start-up","number":0,"text":"text",)"
                         R"("place":null})"
                         "\n"
                         R"({"event":"ruleGone","key":{"unit":1,"group":157,"id":9}})"
                         "\n"
                         R"({"event":"pluginPass","state":"held","reason":""})"
                         "\n"
                         R"({"event":"entityLookedUp","path":"nothing","type":null})"
                         "\n" );
}

TEST( EventLines, AreOneLineEachWhateverTheTextsHold ) {
   std::ostringstream out;
   Story::EventLines( out ).onEvent( Story::OutputLine{ "a\nb\x7f\xc2\x9b\xff" } );

   EXPECT_EQ( out.str(),
              "{\"event\":\"outputLine\",\"text\":\"a\\nb\\u007f\\u009b\xef\xbf\xbd\"}\n" );
}

TEST( EventLines, AreWrittenOutWithEachStepAndWheneverNoEventComes ) {
   class Counting final : public std::stringbuf {
    public:
      int sync() override {
         ++syncs;
         return 0;
      }
      int syncs = 0;
   };
   Counting buffer;
   std::ostream out( &buffer );
   Story::EventLines lines( out );
   lines.onEvent( Story::StepBegins{} );
   EXPECT_EQ( buffer.syncs, 0 );
   lines.onEvent( Story::StepEnds{} );
   EXPECT_EQ( buffer.syncs, 1 );
   lines.onPause();
   EXPECT_EQ( buffer.syncs, 2 );
}

// --- The program

class Events : public testing::Test {
 protected:
   std::vector< std::string > words( std::string const & steps ) const {
      return { "run", "--events", directory.file( "leaf.yaml", Switches::leaf( steps ) ),
               "--plugin", Support::testPlugin( "segment-rules" ) };
   }

   Support::Directory directory;
};

TEST_F( Events, OfARunAreTheWholeStoryAndItsExitCodeStays ) {
   auto const ran =
      Support::vornal( words( "   - ready: subagents::l2Ready\n"
                              "   - expect: { plug-in: waiting }\n" ) );

   EXPECT_EQ( ran.exitCode, 1 );
   EXPECT_EQ( ran.err, "" );
   auto const lines = linesOf( ran.out );
   ASSERT_FALSE( lines.empty() );
   EXPECT_EQ( lines.front()[ "event" ], "runBegins" );
   EXPECT_EQ( Support::timesIn( ran.out, "formatVersion" ), 1U );
   EXPECT_TRUE( ran.out.starts_with( R"({"formatVersion":"1.0","event":"runBegins",)" ) );
   EXPECT_EQ( lines.back()[ "event" ], "runEnds" );
   Names names;
   for ( Story::Json const & line : lines ) {
      names.insert( line[ "event" ].get< std::string >() );
   }
   for ( char const * const name : { "publishedChange", "stepBegins", "pluginLoaded", "callMade",
                                     "ruleIs", "expectationChecked", "stepEnds" } ) {
      EXPECT_TRUE( names.contains( name ) ) << name;
   }
}

TEST_F( Events, EndWithTheStopWhenThePlugInStops ) {
   auto const ran =
      Support::vornal( words( "   - ready: subagents::l2Ready\n"
                              "   - publish: { segments: { Ethernet2: [ 10.0.0.2 ], "
                              "Ethernet3: [ 10.0.0.2 ], Port-Channel7: [ 10.0.0.2 ] "
                              "} }\n" ) );

   EXPECT_EQ( ran.exitCode, 3 );
   EXPECT_EQ( linesOf( ran.out ).back()[ "event" ], "stopped" );
}

TEST_F( Events, CannotBeToldBesideTheDocumentOrAPartOfTheStory ) {
   for ( std::string const option : { "--json", "--step=1", "--what-if=note: x" } ) {
      auto other = words( "   - note: x\n" );
      other.emplace_back( option );
      EXPECT_EQ( Support::vornal( other ).exitCode, 2 ) << option;
   }
}

// --- The clock

TEST( EventsOfTheClock, StandBeforeTheFirstEventOfANewTime ) {
   Support::Recorder story;
   Kiv::ActivityManager const activity;
   Reporters::ClockReporter reporter( *activity.clock(), story );
   reporter.onEvent( Story::StepEnds{ 1 } );
   activity.clock()->nowIs( Kiv::Time( 5 ) );
   activity.clock()->nowIs( Kiv::Time( 7 ) );
   reporter.onEvent( Story::StepEnds{ 2 } );
   reporter.onEvent( Story::StepEnds{ 3 } );

   std::vector< std::string > told;
   for ( Story::Event const & event : story.events() ) {
      told.push_back( jsonOf( event ).dump() );
   }
   EXPECT_EQ( told, ( std::vector< std::string >{ R"({"event":"stepEnds","number":1})",
                                                  R"({"event":"clockMoved","time":7})",
                                                  R"({"event":"stepEnds","number":2})",
                                                  R"({"event":"stepEnds","number":3})" } ) );
}

TEST( EventsOfTheClock, ReachTheObserverOfASwitch ) {
   Process::RingMemory const ring;
   Support::Recorder story;
   Scenario::Model const scenario =
      Steps::readScenarioText( Switches::leaf( "   - note: x\n" ), "leaf.yaml" );
   Host::Environment environment( scenario, ring.bytes(), story );
   environment.activity().clock()->nowIs( Kiv::Time( 5 ) );
   environment.observer().onEvent( Story::StepEnds{ 1 } );

   ASSERT_EQ( story.all< Story::ClockMoved >().size(), 1U );
   EXPECT_EQ( story.all< Story::ClockMoved >()[ 0 ].time, 5U );
}

// --- The document

// The events by name, with the names of their members.
std::map< std::string, Names > eventsInDocument() {
   std::map< std::string, Names > events;
   std::istringstream in( Support::contentOf( VORNAL_SOURCE_DIR "/docs/program.md" ) );
   bool isThere = false;
   for ( std::string line; std::getline( in, line ); ) {
      isThere = line.starts_with( "#" ) ? line == "## The events" : isThere;
      if ( !isThere || !line.starts_with( "| `" ) ) {
         continue;
      }
      std::istringstream cells( line );
      std::string name;
      std::string members;
      std::getline( cells, name, '|' );
      std::getline( cells, name, '|' );
      std::getline( cells, members, '|' );
      Names & found = events[ name.substr( 2, name.size() - 4 ) ];
      for ( std::size_t begin = members.find( '`' ); begin != std::string::npos;
            begin = members.find( '`', members.find( '`', begin + 1 ) + 1 ) ) {
         found.insert( members.substr( begin + 1, members.find( '`', begin + 1 ) - begin - 1 ) );
      }
   }
   return events;
}

TEST( EventsOfTheDocument, AreThoseOfTheProgramWithTheirMembers ) {
   std::map< std::string, Names > written;
   for ( Story::Event const & event : OneOfEach::events() ) {
      Story::Json const json = jsonOf( event );
      Names & members = written[ json[ "event" ].get< std::string >() ];
      for ( auto const & [ name, value ] : json.items() ) {
         if ( name != "event" ) {
            members.insert( name );
         }
      }
   }
   EXPECT_EQ( eventsInDocument(), written );
}

}  // namespace
