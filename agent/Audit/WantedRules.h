// The rules that published state calls for, worked out from that state alone.
//
// Local bias (RFC 8365, section 8.3.1): what arrives through a tunnel from a VTEP that is attached
// to an Ethernet segment of this switch, and is not known unicast, must not leave by the ports of
// that segment. For each unit of the switch:
//
// - a VTEP that shares a segment and has a virtual port needs an ingress rule that matches its
//   source gport; the variant says what it does, and which egress rules go with it
//   (Audit/Variant.h);
// - while any VTEP needs rules, known unicast is exempted, bridged and routed, above them;
// - while there are segments and the override toggle is on, known L3 multicast of every VNI of a
//   tunnel interface is exempted, between those two.
//
// A unit without a port on the shared segments has its rules all the same (Audit/SharedSegments.h).
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

// What one rule is for; no two rules of a switch are for the same.
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
   std::string because;  // the state behind it, in words
   // The allocator has granted no class id: what the rule sets or matches is open.
   bool isWithoutClassId = false;
};

using WantedRules = std::map< RuleFor, WantedRule >;

// None before the plug-in is ready.
WantedRules wantedRules( State const & state );

// What the ingress rules of a VTEP have in common in all variants; the variant adds what is done.
WantedRule ingressRuleOf( State const & state, U16 unit, Pelk::IpGenAddr const & vtep );

// Puts the class id into what marks or matches it.
void classIdIs( RuleFor const & what, VornalCommon::ClassId classId, Chip::EntryContent & content );

}  // namespace Audit
