// Works out the expected rules from the published state alone.
//
// Local bias (RFC 8365, section 8.3.1): a VTEP is attached to an Ethernet segment of this switch
// and sends a frame through a tunnel. Unless the frame is known unicast, it must not leave through
// the ports of that segment. For each unit of the switch:
//
// - A VTEP that shares a segment and has a virtual port needs an ingress rule that matches its
//   source gport. The variant decides the rule's action and the egress rules (Audit/Variant.h).
// - While any VTEP needs rules, known unicast, bridged and routed, is exempted above them.
// - While there are segments and the override toggle is on, known L3 multicast of every VNI of a
//   tunnel interface is exempted, with a priority between those two.
//
// A unit without a port on the shared segments has its rules too (Audit/SharedSegments.h).
//
// Cost: proportional to the rules, times the interfaces of their segments.
#pragma once

#include <compare>
#include <map>
#include <string>
#include <vector>

#include <Audit/State.h>
#include <FieldProcessor/Entry.h>
#include <VornalTcam/EntryManager.h>

namespace Audit {

enum class Purpose : U8 { l2Unicast, l3Unicast, vtep, vni, egressDrop };

// The purpose of one rule; each rule of a switch has its own.
struct RuleFor {
   U16 unit = 0;
   Purpose purpose = Purpose::vtep;
   Pelk::IpGenAddr vtep{};          // vtep, egressDrop
   VornalTypes::VornalPort port{};  // egressDrop
   U32 vni = 0;                     // vni

   Vornal::TcamGroupAssignment group() const {
      return purpose == Purpose::egressDrop ? Vornal::kEfpLocalBiasGroup
                                            : Vornal::kIfpLocalBiasGroup;
   }

   friend auto operator<=>( RuleFor const &, RuleFor const & ) = default;
};

struct WantedRule {
   std::string name;
   Chip::EntryContent content;
   std::string because;  // the reason in the state, in words
   // The allocator has granted no class id, so the rule's id is open.
   bool isWithoutClassId = false;
};

using WantedRules = std::map< RuleFor, WantedRule >;

// Empty before the plug-in is ready.
WantedRules wantedRules( State const & state );

// The part of a VTEP's ingress rule that all variants share; the variant adds the action.
WantedRule ingressRuleOf( State const & state, U16 unit, Pelk::IpGenAddr const & vtep );

// Puts the class id into the action or qualifier that carries it.
void classIdIs( RuleFor const & what, VornalCommon::ClassId classId, Chip::EntryContent & content );

}  // namespace Audit
