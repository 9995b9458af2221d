// An example of every event.
#pragma once

#include <string>
#include <vector>

#include <Story/Event.h>

namespace OneOfEach {

inline Story::EntityTree someTree() {
   Story::EntityTree const segment{ "Evpn::EthernetSegmentStatus", "Ethernet1", "", {} };
   return {
      "Evpn::EvpnStatus",
      "status",
      "",
      { { "segmentStatus", Kiv::Attribute::Kind::Members, { { "Ethernet1", "", { segment } } } },
        { "name", Kiv::Attribute::Kind::Value, { { "", "text", {} } } } }
   };
}

inline Brum::PerUnitBitmap somePorts() {
   Brum::PerUnitBitmap ports;
   ports.bitSet( 1 );
   ports.bitSet( 300 );
   return ports;
}

// Every qualifier and every action, each with other numbers.
inline Chip::Rule someRule() {
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

inline Chip::HardwareCall someCall() {
   return { "installEntry",
            "call( unit )",
            1,
            2,
            { { "group", U32{ 157 } }, { "name", std::string( "n" ) }, { "ports", somePorts() } },
            -2 };
}

inline Chip::FrameStory someFrame() {
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
inline std::vector< Story::Event > events() {
   return { Story::RunBegins{ "s.yaml", "title", "what it is", 3 },
            Story::StepBegins{ Story::StepKind::Teardown, 4, "text", "s.yaml:7" },
            Story::StepEnds{ 4 },
            Story::ClockMoved{ 1'500'000'000 },
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

}  // namespace OneOfEach
