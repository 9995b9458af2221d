#include <Story/Codec.h>

#include <set>

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

Brum::PerUnitBitmap somePorts() {
   Brum::PerUnitBitmap ports;
   ports.bitSet( 1 );
   ports.bitSet( 300 );
   return ports;
}

// Every qualifier and every action, each with other numbers.
Chip::Rule someRule() {
   Chip::EntryContent content;
   content.priority = 2;
   U32 number = 0x56000002;
   for ( Chip::Qualifier const qualifier : Chip::kQualifiers ) {
      content[ qualifier ] = Chip::Match{ number, ~number, number + 1, number + 2 };
      number += 3;
   }
   for ( Chip::Action const action : Chip::kActions ) {
      content[ action ] = Chip::ActionParameters{ number, number + 1, somePorts() };
      number += 2;
   }
   return { { 1, 157, 9 }, "Mark \"this\"", true, content };
}

Chip::HardwareCall someCall() {
   return { "installEntry",
            "call( unit )",
            1,
            2,
            { { "group", U32{ 157 } }, { "name", std::string( "n" ) }, { "ports", somePorts() } },
            -2 };
}

Chip::FrameStory someFrame() {
   Chip::RuleKey const rule{ 1, 157, 9 };
   auto const address = &Pelk::IpGenAddr::fromString;
   return { { 1, 49, 2 },
            Pelk::IntfId::fromString( "Ethernet49" ),
            146,
            Chip::TunnelStory{ address( "10.0.0.2" ), address( "2001:db8::1" ), 10100, 0x56000002 },
            Chip::InnerStory{ Chip::MacAddress( 0x00005e005302 ), Chip::MacAddress::broadcast(), 10,
                              0x800,
                              Chip::IpStory{ address( "192.0.2.2" ), address( "192.0.2.255" ) } },
            Chip::FrameKind::RoutedUnicast,
            Chip::DropReason::UnknownHost,
            { { 1, rule, 5 } },
            { { Pelk::IntfId::fromString( "Ethernet1" ),
                { 1, 4 },
                address( "10.0.0.3" ),
                Chip::Verdict::NotDesignated,
                rule } } };
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
            Story::CallMade{ someCall() },
            Story::RuleIs{ someRule() },
            Story::RuleGone{ { 1, 157, 9 } },
            Story::Traced{ "VornalEvpnSm", 5, "line\twith \"blanks\"\nand two lines" },
            Story::Logged{ "NAME", "%VORNAL-3-NAME: text" },
            Story::ExpectationChecked{ "text", "s.yaml:8", true, "found" },
            Story::StopExpected{ "text", "s.yaml:9", "a == b", "add" },
            Story::FramesBegin{ "Ethernet49", 9 },
            Story::FrameForwarded{ 7, someFrame() },
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
            Story::TableShown{ { "rules",
                                 { "unit", "vtep" },
                                 { { U64{ 1 }, Story::Cell() },
                                   { "text", std::vector< std::string >{ "a", "b" } } } } },
            Story::FrameExplained{
               { "frame", "text", { { "number", U64{ 7 } } }, { { "verdict", "sent" } } } },
            Story::OutputLine{ "text" },
            Story::Stopped{ "signal 6",
                            Story::Assertion{ "f.cpp", 12, "void f()", "a == b" },
                            { "last" },
                            { { "h", 2, "t" } },
                            true,
                            false },
            Story::Interrupted{ 15, "signal 15 (Terminated)" } };
}

TEST( Codec, HasAnExampleOfEveryEvent ) {
   std::set< std::size_t > kinds;
   for ( Event const & event : oneOfEach() ) {
      kinds.insert( event.index() );
   }
   EXPECT_EQ( kinds.size(), std::variant_size_v< Event > );
}

TEST( Codec, ReadsBackWhatItWritesForEveryEvent ) {
   for ( Event const & event : oneOfEach() ) {
      std::string const line = Story::encoded( event );
      Event const read = Story::decoded( line );

      EXPECT_EQ( read.index(), event.index() ) << line;
      EXPECT_EQ( Story::encoded( read ), line );
   }
}

// --- Every member is listed among the fields

// How many members a structure has: the most that its braces take.
template< typename T > consteval std::size_t memberCount() {
   if constexpr ( requires { T{ {}, {}, {}, {}, {}, {}, {}, {}, {}, {} }; } ) {
      return 10;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {}, {}, {}, {}, {} }; } ) {
      return 9;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {}, {}, {}, {} }; } ) {
      return 8;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {}, {}, {} }; } ) {
      return 7;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {}, {} }; } ) {
      return 6;
   } else if constexpr ( requires { T{ {}, {}, {}, {}, {} }; } ) {
      return 5;
   } else if constexpr ( requires { T{ {}, {}, {}, {} }; } ) {
      return 4;
   } else if constexpr ( requires { T{ {}, {}, {} }; } ) {
      return 3;
   } else if constexpr ( requires { T{ {}, {} }; } ) {
      return 2;
   } else {
      return 1;
   }
}

template< typename T > std::size_t fieldCount() {
   std::size_t count = 0;
   T const structure{};
   Story::Fields< T >::list( structure, [ & ]( char const *, auto const &... ) { ++count; } );
   return count;
}

// A field that is not listed would be lost in both directions, and no text would tell.
TEST( Codec, KnowsEveryMemberOfEveryEvent ) {
   for ( Event const & event : oneOfEach() ) {
      std::visit(
         []< typename T >( T const & ) {
            EXPECT_EQ( fieldCount< T >(), memberCount< T >() ) << T::kName;
         },
         event );
   }
   EXPECT_EQ( fieldCount< Story::Assertion >(), memberCount< Story::Assertion >() );
   EXPECT_EQ( fieldCount< Story::Difference >(), memberCount< Story::Difference >() );
   EXPECT_EQ( fieldCount< Story::EntityTree >(), memberCount< Story::EntityTree >() );
   EXPECT_EQ( fieldCount< Story::EntityItem >(), memberCount< Story::EntityItem >() );
   EXPECT_EQ( fieldCount< Story::EntityAttribute >(), memberCount< Story::EntityAttribute >() );
}

// The event as the other process has it.
template< typename T > T sent( T const & event ) {
   return std::get< T >( Story::decoded( Story::encoded( event ) ) );
}

TEST( Codec, KeepsEveryFieldOfRulesCallsAndFrames ) {
   EXPECT_EQ( sent( Story::RuleIs{ someRule() } ).rule, someRule() );
   EXPECT_EQ( sent( Story::RuleIs{} ).rule, Chip::Rule() );
   EXPECT_EQ( sent( Story::CallMade{ someCall() } ).call, someCall() );
   EXPECT_EQ( sent( Story::FrameForwarded{ 7, someFrame() } ).frame, someFrame() );
   EXPECT_EQ( sent( Story::FrameForwarded{} ).frame, Chip::FrameStory() );
}

TEST( Codec, RefusesANumberThatStandsForNoVerdict ) {
   std::string line = Story::encoded( Story::FrameForwarded{ 7, someFrame() } );
   std::string const last = R"("verdict":)" + std::to_string( Chip::kVerdicts - 1 );
   ASSERT_NE( line.find( last ), std::string::npos );
   line.replace( line.find( last ), last.size(),
                 R"("verdict":)" + std::to_string( Chip::kVerdicts ) );

   EXPECT_THROW( Story::decoded( line ), std::runtime_error );
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
