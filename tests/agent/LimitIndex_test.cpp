// The known limits, found by the stop that they end in.
#include <Story/StopEvents.h>

#include <algorithm>

#include <gtest/gtest.h>

#include <Support.h>

namespace {

using Titles = std::vector< std::string >;

Story::Stopped stoppedAt( std::string const & expression, std::string const & file,
                          std::string const & function ) {
   return { "signal 6 (Aborted)",
            Story::Assertion{ file, 7, "void Vornal::Sm::" + function + "(U32)", expression },
            {},
            {} };
}

Story::Stopped const kNoMask = stoppedAt( "unitTepIpToEntry->esPbmpHas( tepIp )",
                                          "EgressMaskProgramming.cpp", "ifpTcamEntries" );

Titles titlesOf( Story::Stopped const & stopped, Story::StopCause const & cause ) {
   Titles titles;
   for ( Story::KnownLimit const & limit : Story::limitIndex().limitsAt( stopped, cause ) ) {
      titles.push_back( limit.title );
   }
   return titles;
}

// --- The index

TEST( LimitIndex, IsThatOfTheDocumentAsItIs ) {
   EXPECT_EQ( Story::limitsDocument(), Support::contentOf( VORNAL_SOURCE_DIR "/docs/limits.md" ) );
}

TEST( LimitIndex, LeadsToSectionsThatHaveARemedy ) {
   std::string const document = Story::limitsDocument();
   ASSERT_GE( Story::limitIndex().rows().size(), 50U );
   for ( Story::LimitIndex::Row const & row : Story::limitIndex().rows() ) {
      Story::Stopped stopped = stoppedAt( row.expression, row.file, row.function );
      if ( row.file.empty() ) {
         stopped.assertion.reset();
         stopped.output = { "exception left a change handler: " + row.expression };
      }
      auto const limits =
         Story::limitIndex().limitsAt( stopped, { row.variant == "both" ? "class-id" : row.variant,
                                                  row.events } );
      auto const found = std::find_if( limits.begin(), limits.end(), [ & ]( auto const & limit ) {
         return limit.title == row.title;
      } );
      ASSERT_NE( found, limits.end() ) << row.title;
      EXPECT_NE( found->remedy, "" ) << row.title;
      EXPECT_NE( document.find( "\n### " + row.title + "\n" ), std::string::npos ) << row.title;
   }
}

TEST( LimitIndex, NamesTheEventsThatAreFollowed ) {
   std::set< std::string > const known{ "segment", "virtual port", "class id",
                                        "VNI",     "port",         "port channel",
                                        "room",    "verification", "start" };
   for ( Story::LimitIndex::Row const & row : Story::limitIndex().rows() ) {
      EXPECT_FALSE( row.events.empty() ) << row.title;
      EXPECT_TRUE(
         std::includes( known.begin(), known.end(), row.events.begin(), row.events.end() ) )
         << row.title;
   }
}

TEST( LimitIndex, TellsLimitsWithOneExpressionApartByTheEvent ) {
   EXPECT_EQ( titlesOf( kNoMask, { "egress-mask", { "virtual port" } } ),
              ( Titles{ "A second key of a VTEP goes", "One of two units is full",
                        "The virtual port of a VTEP without a rule changes" } ) );
   EXPECT_EQ( titlesOf( kNoMask, { "egress-mask", { "segment" } } ),
              ( Titles{ "A second key of a VTEP goes", "One of two units is full",
                        "The segment of a VTEP without a rule goes" } ) );
}

TEST( LimitIndex, FindsNothingOnTheOtherVariantAfterAnotherEventOrElsewhere ) {
   EXPECT_EQ( titlesOf( kNoMask, { "class-id", { "segment" } } ), Titles() );
   EXPECT_EQ( titlesOf( kNoMask, { "egress-mask", { "VNI" } } ), Titles() );
   EXPECT_EQ( titlesOf( kNoMask, { "egress-mask", {} } ), Titles() );
   Story::Stopped elsewhere = kNoMask;
   elsewhere.assertion->function = "void Vornal::Sm::other()";
   EXPECT_EQ( titlesOf( elsewhere, { "egress-mask", { "segment" } } ), Titles() );
   elsewhere = kNoMask;
   elsewhere.assertion->file = "Other.cpp";
   EXPECT_EQ( titlesOf( elsewhere, { "egress-mask", { "segment" } } ), Titles() );
}

TEST( LimitIndex, KnowsBothVariantsBeforeOneIsChosen ) {
   EXPECT_FALSE( titlesOf( kNoMask, { "", { "segment" } } ).empty() );
}

TEST( LimitIndex, GivesARemedyAsPlainText ) {
   Story::LimitIndex const index(
      "| `a == b` | `f.cpp` | `add` | both | segment, VNI | [One](#one) |\n"
      "### One\n"
      "- *Then:* It stops.\n"
      "- *Remedy:* Do nothing, or see\n"
      "  [Another](#another).\n"
      "\n"
      "  Not this.\n" );
   auto const limits = index.limitsAt( stoppedAt( "a == b", "f.cpp", "add" ), { "", { "VNI" } } );

   ASSERT_EQ( limits.size(), 1U );
   EXPECT_EQ( limits[ 0 ].remedy, "Do nothing, or see Another." );
}

// --- The events

std::set< std::string > eventsAfter( std::vector< Story::Event > const & events ) {
   Story::StopEvents stop;
   for ( Story::Event const & event : events ) {
      stop.onEvent( event );
   }
   return stop.cause().events;
}

using Events = std::set< std::string >;

TEST( StopEvents, AreThoseOfTheStepUnderWay ) {
   Story::StepBegins const step{ Story::StepKind::Scenario, 1, "publish", "" };
   Story::PublishedChange const port{ "/p", "remoteVport", "10.0.0.2", {}, "2" };
   Story::PublishedChange const segment{ "/s", "segmentStatus", "Ethernet1", {}, "x" };

   EXPECT_EQ( eventsAfter( { port, step, segment } ), Events{ "segment" } );
   EXPECT_EQ( eventsAfter( { step, port, segment } ), ( Events{ "segment", "virtual port" } ) );
   EXPECT_EQ( eventsAfter( { step, Story::DependencyPointReady{ "l2Ready", false } } ),
              Events{ "start" } );
   EXPECT_EQ( eventsAfter( { step, Story::DependencyPointReady{ "evpn", true } } ), Events() );
}

TEST( StopEvents, KnowAPassUntilItHasHeld ) {
   using State = Story::PluginPass::State;
   Story::StepBegins const step{ Story::StepKind::Scenario, 1, "verify", "" };
   Story::PluginPass const begins{ State::Begins };

   EXPECT_EQ( eventsAfter( { step, begins } ), Events{ "verification" } );
   EXPECT_EQ( eventsAfter( { step, begins, Story::PluginPass{ State::Held } } ), Events() );
   EXPECT_EQ( eventsAfter( { { Story::StepBegins{ Story::StepKind::Scenario, 1,
                                                  "call /sm handleVerify()", "" } } } ),
              Events{ "verification" } );
}

}  // namespace
