// The model of a scenario: a switch, what other agents publish before the plug-in is loaded, and
// the steps of a story.
//
// All but the actions of steps are plain values; docs/scenarios.md describes the language that they
// are read from, and Scenario/Reader.h reads it. A model that the reader hands out is whole: every
// interface that it names is defined, every unit is one of the switch's, every path is well formed.
// Whether an entity or an attribute exists shows when a step is carried out; `line` is there to say
// where the step stands.
//
// Changes. Whatever agents publish or withdraw is a list of changes, each of which is one change of
// one attribute of one entity, and so one turn of the activity. They are in the order in which they
// are to happen: in steps as written; before the plug-in is loaded interfaces first, then port
// channels, segments, VTEPs and tunnel interfaces. What must enter before its parts does: a segment
// before its VTEPs, a tunnel interface before its mappings.
//
// What a step does is an Action, which knows the rest; Steps/Table.cpp lists all kinds.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <Audit/State.h>
#include <L3/VrfName.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <Quelm/Integers.h>
#include <Scenario/Action.h>
#include <Scenario/Forwarding.h>
#include <VornalCommon/ClassId.h>
#include <VornalTypes/VornalPort.h>
#include <Vxlan/VniExtOrNone.h>

namespace Scenario {

// --- the switch

using Audit::Variant;

struct SwitchUnit {
   U16 number = 0;
   U16 module = 0;
};

// The entries that a group has on each unit; nothing: the switch has no such group.
struct Tcam {
   static constexpr U32 kUsualEntries = 256;
   static constexpr U32 kMostEntries = 65536;

   std::optional< U32 > ingress = kUsualEntries;
   std::optional< U32 > egress = kUsualEntries;
};

// The ids that the central allocator hands out, both ends included.
struct ClassIds {
   static constexpr U16 kHighest = 0xfffe;  // 0xffff stands for no class id

   U16 first = 1;
   U16 last = 4095;
   U32 delay = 0;  // turns between a request and its grant, beside the grant's own
};

struct Switch {
   std::string name;
   std::string slice = "1";  // the slice identifier as text
   Variant variant = Variant::egressMask;
   std::vector< SwitchUnit > units;  // ascending; at least one
   Tcam tcam;
   ClassIds classIds;
   // The platform does without per-VNI rules for known L3 multicast.
   bool isL3MulticastExempt = false;
};

// --- what agents publish; a withdrawal leaves the values (port, virtual port, VNI) default-built

// An interface has a chip port.
struct InterfacePort {
   Pelk::IntfId intf;
   VornalTypes::VornalPort port;
};

struct PortChannelMember {
   Pelk::IntfId portChannel;
   Pelk::IntfId member;
};

// There is an Ethernet segment on the interface. Withdrawn with all its VTEPs.
struct Segment {
   Pelk::IntfId intf;
};

// The remote VTEP is attached to the segment on the interface.
struct SegmentVtep {
   Pelk::IntfId intf;
   Pelk::IpGenAddr vtep;
};

// The virtual port that the chip uses for a remote VTEP; its low 16 bits are the VP index.
struct VtepVirtualPort {
   Pelk::IpGenAddr vtep;
   U32 virtualPort = 0;
};

// There is a tunnel interface. Withdrawn with all its mappings.
struct TunnelInterface {
   Pelk::IntfId intf;
};

// The VRF is routed over the tunnel interface in that VNI.
struct VrfVni {
   Pelk::IntfId intf;
   L3::VrfName vrf;
   Vxlan::VniExtOrNone vni;
};

// A class id is wanted for the remote VTEP: what an earlier run of the agent has left behind.
struct ClassIdRequest {
   Pelk::IpGenAddr vtep;
};

// The class id that the remote VTEP is granted.
struct ClassIdGrant {
   Pelk::IpGenAddr vtep;
   VornalCommon::ClassId id;
};

using Published =
   std::variant< InterfacePort, PortChannelMember, Segment, SegmentVtep, VtepVirtualPort,
                 TunnelInterface, VrfVni, ClassIdRequest, ClassIdGrant >;

struct Change {
   Published what;
   int line = 0;
};

// A new entity takes the place of the one of its key, in one change, with all that it holds; where
// there is none, it enters filled.
struct SegmentReplaced {
   Pelk::IntfId intf;
   std::vector< Pelk::IpGenAddr > vteps;
};

struct TunnelInterfaceReplaced {
   Pelk::IntfId intf;
   std::vector< VrfVni > vnis;
};

using Replaced = std::variant< SegmentReplaced, TunnelInterfaceReplaced >;

struct Replacement {
   Replaced what;
   int line = 0;
};

// --- steps

struct Step {
   // Copies of a model share what its steps do; nobody changes it.
   std::shared_ptr< Action const > action;
   int line = 0;

   // What the step does, if it is of that kind.
   template< typename Kind > Kind const * as() const {
      return dynamic_cast< Kind const * >( action.get() );
   }
};

// --- the whole

// Text trace levels of the handles that `handles` matches, as Trace::levelsIs takes both.
struct TraceLevels {
   std::string handles;
   std::string levels;
   int line = 0;  // 0: it is not of the scenario
};

struct Model {
   std::string file;  // what `line` counts in, as it was given to the reader
   std::string name;
   std::string description;
   Switch device;
   std::optional< Forwarding > forwarding;  // nothing: it forwards no frames
   std::vector< Change > published;         // before the plug-in is loaded
   std::filesystem::path featureFiles;      // the directory of the feature files
   std::vector< TraceLevels > trace;        // in force from before the plug-in is loaded
   std::vector< Step > steps;
};

}  // namespace Scenario
