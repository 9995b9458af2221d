// Short runs, as events, for tests of those who tell them.
#pragma once

#include <vector>

#include <Story/Observer.h>

namespace Stories {

inline Chip::Rule rule( U32 id, bool isWritten = true ) {
   Chip::EntryContent content;
   content[ Chip::Qualifier::SrcVxlanGport ] = Chip::Match{ 0x56000002, 0xffffffff };
   content[ Chip::Qualifier::PacketRes ] = Chip::Match{ 4, 0xff };
   content[ Chip::Action::EgressMask ].emplace();
   content[ Chip::Action::EgressMask ]->ports.bitSet( 3 );
   content[ Chip::Action::EgressMask ]->ports.bitSet( 4 );
   content.priority = 1;
   return { { 0, 157, id }, "Mark or drop", isWritten, content };
}

inline Story::StepBegins step( U32 number, std::string const & text = "ready subagents::l2Ready" ) {
   return { Story::StepKind::Scenario, number, text, "start-up.yaml:12" };
}

inline Story::ExpectationChecked expectation( bool held ) {
   return { "plug-in ready", "start-up.yaml:14", held, held ? "" : "it is not ready" };
}

// Up to and including start-up.
inline std::vector< Story::Event > startUp() {
   return { Story::RunBegins{ "start-up.yaml", "start-up", "A leaf comes up.", 2 },
            Story::PublishedChange{ "/evpn/status", "segmentStatus", "Ethernet1", {}, "x" },
            Story::StepBegins{ Story::StepKind::StartUp, 0, "the plug-in is loaded", "" },
            Story::PluginLoaded{ "VornalEvpn.so", { "Vornal::VornalEvpnMounter" } },
            Story::MountAsked{ "evpn/status", "Evpn::EvpnStatus", "r" },
            Story::MountAsked{ "class/ids", "Class::Ids", "wc" },
            Story::MountsDone{ "Vornal::VornalEvpnMounter", "complete", {} },
            Story::EntityLookedUp{ "evpn/status", "Evpn::EvpnStatus" },
            Story::EntityLookedUp{ "nothing", "" },
            Story::SharedEntityAsked{ "vornalCommon", "Vornal::VornalCommonSmData" },
            Story::StepEnds{ 0 } };
}

// A step that makes the plug-in ready, with one rule that was written and one that was staged.
inline std::vector< Story::Event > readyStep() {
   return { step( 1 ),
            Story::DependencyPointReady{ "subagents::l2Ready", false },
            Story::TcamGroupAsked{ 157, true },
            Story::CallMade{ { "getEntry", "", 0, 1, { { "group", U32{ 157 } } }, {} } },
            Story::RuleIs{ rule( 1, false ) },
            Story::CallMade{ { "bcm_field_qualify_PacketRes", "call( unit )", 0, 1, {}, -2 } },
            Story::RuleIs{ rule( 1, true ) },
            Story::RuleIs{ rule( 2, false ) },
            Story::VariantChosen{ "egress-mask", "Vornal::WithEgressMaskSm" },
            Story::DependencyPointReady{ "evpn", true },
            Story::StepEnds{ 1 } };
}

inline Story::Stopped stopped() {
   return { "signal 6 (Aborted)",
            Story::Assertion{ "Sm.cpp", 117, "void Vornal::Sm::add()", "count < 2" },
            { "Sm.cpp:117: void Vornal::Sm::add(): Assertion 'count < 2' failed." },
            { { "VornalEvpnSm", 5, "add, unit: 0" } } };
}

inline void tell( Story::Observer & observer, std::vector< Story::Event > const & events ) {
   for ( Story::Event const & event : events ) {
      observer.onEvent( event );
   }
}

}  // namespace Stories
