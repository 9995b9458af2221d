// What happens on a switch, from its start on. Other agents publish, change and withdraw state;
// others take and leave room; the layer-2 sub-agent becomes ready; the chip fails.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>

#include <Facts/Device.h>
#include <Facts/Facts.h>
#include <Rules/Drift.h>
#include <Rules/Faults.h>

namespace Reference {

struct PortIs {
   Interface intf;
   Port port;
};
struct PortGoes {
   Interface intf;
};
// The interface leaves the port channel that it is in, if any.
struct MemberJoins {
   Interface portChannel;
   Interface member;
};
struct MemberLeaves {
   Interface member;
};
struct SegmentIs {
   Interface intf;
};
// With all its VTEPs.
struct SegmentGoes {
   Interface intf;
};
// Another segment takes the place of the one there, in one change.
struct SegmentReplaced {
   Interface intf;
   std::set< Vtep > vteps;
};
struct VtepJoins {
   Interface segment;
   Vtep vtep;
};
struct VtepLeaves {
   Interface segment;
   Vtep vtep;
};
struct VirtualPortIs {
   Vtep vtep;
   unsigned number = 0;
};
struct VirtualPortGoes {
   Vtep vtep;
};
struct OtherKeyIs {
   OtherKey key;
   unsigned virtualPort = 0;
};
struct OtherKeyGoes {
   OtherKey key;
};
struct TunnelIs {
   Interface intf;
};
struct TunnelGoes {
   Interface intf;
};
struct TunnelReplaced {
   Interface intf;
   std::map< std::string, Vni > vnis;
};
struct VniIs {
   Interface tunnel;
   std::string vrf;
   Vni vni = kNoVni;
};
struct VniGoes {
   Interface tunnel;
   std::string vrf;
};
struct GrantIs {
   Vtep vtep;
   ClassId id = kNoClassId;
};
struct GrantGoes {
   Vtep vtep;
};
struct OthersHold {
   Group group = Group::ingress;
   std::optional< unsigned > unit;  // nothing: each
   unsigned entries = 0;
};
struct Ready {};
// The plug-in's own verification pass runs.
struct Pass {};

// CallFails, EntryIsRefused and RuleDrifts are faults of the chip. The plug-in is not told.
using Event =
   std::variant< PortIs, PortGoes, MemberJoins, MemberLeaves, SegmentIs, SegmentGoes,
                 SegmentReplaced, VtepJoins, VtepLeaves, VirtualPortIs, VirtualPortGoes, OtherKeyIs,
                 OtherKeyGoes, TunnelIs, TunnelGoes, TunnelReplaced, VniIs, VniGoes, GrantIs,
                 GrantGoes, OthersHold, Ready, Pass, CallFails, EntryIsRefused, RuleDrifts >;

}  // namespace Reference
