#include <Story/Codec.h>

#include <algorithm>

#include <gtest/gtest.h>

namespace {

using Story::Event;

Story::EntityTree someTree() {
   Story::EntityTree const segment{ "Evpn::EthernetSegmentStatus", "Ethernet1", "", {} };
   return {
      "Evpn::EvpnStatus",
      "status",
      "",
      { { "segmentStatus", Kiv::Attribute::Kind::Members, { { "Ethernet1", "", { segment } } } },
        { "name", Kiv::Attribute::Kind::Value, { { "", "text", {} } } } }
   };
}

Story::Rule someRule() {
   return { { 1, 157, 9 },
            "Mark \"this\"",
            2,
            true,
            { { "SrcVxlanGport", { { "", 0x56000002, 0xffffffff } }, {} } },
            { { "EgressMask", {}, std::vector< U32 >{ 3, 4 } }, { "Drop", {}, {} } } };
}

Story::FrameForwarded someFrame() {
   Story::RuleKey const rule{ 1, 157, 9 };
   return { 7,
            "Ethernet49",
            146,
            Story::FrameTunnel{ "10.0.0.2", "10.0.0.1", 10100 },
            Story::FrameInner{ "00:00:5e:00:53:02", "ff:ff:ff:ff:ff:ff", 10, 0x800, "192.0.2.2",
                               "192.0.2.255" },
            "broadcast",
            "unknown-vtep",
            { { 1, rule, 5 } },
            { { "Ethernet1", "10.0.0.3", 1, 4, "masked", rule } } };
}

// One of every kind, with every field set to something that is not its default.
std::vector< Event > oneOfEach() {
   return { Story::RunBegins{ "s.yaml", "title", "what it is", 3 },
            Story::StepBegins{ Story::StepKind::Teardown, 4, "text", "s.yaml:7" },
            Story::StepEnds{ 4 },
            Story::RunEnds{ 1'000'000'000'000 },
            Story::BadInput{ "s.yaml:7: wrong" },
            Story::Warning{ "s.yaml:8: no such handle" },
            Story::PluginLoaded{ "p.so", { "A", "B" } },
            Story::MountAsked{ "evpn/status", "Evpn::EvpnStatus", "wc" },
            Story::MountsDone{ "A", "partial", { "problem" } },
            Story::EntityLookedUp{ "evpn/status", "Evpn::EvpnStatus" },
            Story::SharedEntityAsked{ "vornalCommon", "Vornal::VornalCommonSmData" },
            Story::TcamGroupAsked{ 157, true },
            Story::VariantChosen{ "class-id", "T" },
            Story::DependencyPointReady{ "evpn", true },
            Story::PublishedChange{ "/p", "a", "k", "1", "2" },
            Story::HardwareCall{ "installEntry",
                                 "call( unit )",
                                 1,
                                 2,
                                 { { "group", U64{ 157 } },
                                   { "name", std::string( "n" ) },
                                   { "ports", std::vector< U32 >{ 1, 300 } } },
                                 -2 },
            Story::RuleIs{ someRule() },
            Story::RuleGone{ { 1, 157, 9 } },
            Story::TraceLine{ "VornalEvpnSm", 5, "line\twith \"blanks\"\nand two lines" },
            Story::LogLine{ "NAME", "%VORNAL-3-NAME: text" },
            Story::ExpectationChecked{ "text", "s.yaml:8", true, "found" },
            Story::FramesBegin{ "Ethernet49", 9 },
            someFrame(),
            Story::ForeignEntriesAre{ 1, 157, 5, 3 },
            Story::EntityDumped{ "/evpn/status", someTree() },
            Story::RulesDumped{ { someRule() } },
            Story::Audited{ 5,
                            4,
                            { { Story::DifferenceKind::wrongMask, 1, 157, 3, "rule", "EgressMask",
                                "ports 3", "ports 4", "because" } },
                            { "10.0.0.4" } },
            Story::PluginPass{ Story::PluginPass::State::Skipped, "it is full" },
            Story::EntityShown{ "/evpn/status", someTree() },
            Story::OutputLine{ "text" },
            Story::Stopped{ "signal 6",
                            Story::Assertion{ "f.cpp", 12, "void f()", "a == b" },
                            { "last" },
                            { { "h", 2, "t" } },
                            true },
            Story::Interrupted{ 15, "signal 15 (Terminated)" } };
}

TEST( Codec, HasAnExampleOfEveryEvent ) {
   auto const events = oneOfEach();
   ASSERT_EQ( events.size(), std::variant_size_v< Event > );
   for ( std::size_t n = 0; n < events.size(); ++n ) {
      EXPECT_EQ( events[ n ].index(), n );
   }
}

TEST( Codec, ReadsBackWhatItWritesForEveryEvent ) {
   for ( Event const & event : oneOfEach() ) {
      std::string const line = Story::encoded( event );
      Event const read = Story::decoded( line );

      EXPECT_EQ( read.index(), event.index() ) << line;
      EXPECT_EQ( Story::encoded( read ), line );
   }
}

TEST( Codec, KeepsEveryFieldOfARuleAndOfACall ) {
   EXPECT_EQ( std::get< Story::RuleIs >(
                 Story::decoded( Story::encoded( Story::RuleIs{ someRule() } ) ) )
                 .rule,
              someRule() );

   auto const events = oneOfEach();
   auto const sent = std::find_if( events.begin(), events.end(), []( Event const & event ) {
      return std::holds_alternative< Story::HardwareCall >( event );
   } );
   auto const call = std::get< Story::HardwareCall >( Story::decoded( Story::encoded( *sent ) ) );
   EXPECT_EQ( std::get< U64 >( call.values.at( 0 ).value ), 157U );
   EXPECT_EQ( std::get< std::string >( call.values.at( 1 ).value ), "n" );
   EXPECT_EQ( std::get< std::vector< U32 > >( call.values.at( 2 ).value ).back(), 300U );
   EXPECT_EQ( call.returnCode, -2 );
}

TEST( Codec, KeepsAbsentValuesApartFromEmptyOnes ) {
   Event const gone = Story::PublishedChange{ "/p", "a", "k", "", std::nullopt };

   auto const read = std::get< Story::PublishedChange >( Story::decoded( Story::encoded( gone ) ) );

   EXPECT_EQ( read.from, "" );
   EXPECT_EQ( read.to, std::nullopt );
}

TEST( Codec, WritesOneLineAndReplacesWhatIsNotUtf8 ) {
   std::string const line = Story::encoded( Story::OutputLine{ "a\nb\xff" } );

   EXPECT_EQ( line.find( '\n' ), std::string::npos );
   EXPECT_EQ( std::get< Story::OutputLine >( Story::decoded( line ) ).text, "a\nb\xef\xbf\xbd" );
}

TEST( Codec, RefusesWhatIsNoEvent ) {
   for ( char const * const line :
         { "", "{", "{}", "[]", R"({"event":"surprise"})", R"({"event":"stepEnds"})",
           R"({"event":"stepEnds","number":"x"})", R"({"event":"stepEnds","number":1e999})",
           R"({"event":"audited","rules":1,"entries":1,"differences":[{"kind":"odd"}]})" } ) {
      EXPECT_THROW( Story::decoded( line ), std::runtime_error ) << line;
   }
}

TEST( Codec, RefusesAFractionWhereAWholeNumberBelongs ) {
   EXPECT_EQ(
      std::get< Story::StepEnds >( Story::decoded( R"({"event":"stepEnds","number":7})" ) ).number,
      7U );
   EXPECT_THROW( Story::decoded( R"({"event":"stepEnds","number":7.5})" ), std::runtime_error );
   EXPECT_THROW( Story::decoded( R"({"event":"stepEnds","number":7.0})" ), std::runtime_error );
}

TEST( Codec, RefusesWhatIsNestedWithoutEnd ) {
   std::string const deep( 1'000'000, '[' );
   std::string const end( 1'000'000, ']' );
   EXPECT_THROW( Story::decoded( R"({"event":"stepEnds","number":)" + deep + end + "}" ),
                 std::runtime_error );
}

}  // namespace
