// The model of a scenario: a switch, the state that other agents publish before the plug-in is
// loaded, and the steps of a story.
//
// Everything but the actions of steps is a plain value. docs/scenarios.md describes the language,
// and Scenario/Reader.h reads it. The reader makes sure that every interface of a model is defined,
// every unit is one of the switch's, and every path is well formed. Only carrying out a step shows
// whether an entity or an attribute exists; `line` is the step's place for such errors.
//
// Changes. The state that agents publish or withdraw is a list of changes. Each changes one
// attribute of one entity and is one turn of the activity. The list has the order in which the
// changes happen: in steps as written; before the plug-in is loaded interfaces first, then port
// channels, segments, VTEPs and tunnel interfaces. A segment enters before its VTEPs, and a tunnel
// interface before its mappings.
//
// The Action of a step holds the rest; Steps/Table.cpp lists all kinds.
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
#include <Scenario/Sources.h>
#include <VornalCommon/ClassId.h>
#include <VornalTypes/VornalPort.h>
#include <Vxlan/VniExtOrNone.h>

namespace Scenario {

// --- The switch

using Audit::Variant;

struct SwitchUnit {
   U16 number = 0;
   U16 module = 0;
};

// The number of entries of a group on each unit; nothing: the switch has no such group.
struct Tcam {
   static constexpr U32 kUsualEntries = 256;
   static constexpr U32 kMostEntries = 65536;

   std::optional< U32 > ingress = kUsualEntries;
   std::optional< U32 > egress = kUsualEntries;
};

// The ids that the central allocator hands out, both ends included.
struct ClassIds {
   static constexpr U16 kHighest = 0xfffe;  // 0xffff means no class id

   U16 first = 1;
   U16 last = 4095;
   U32 delay = 0;  // turns between a request and its grant, in addition to the grant's own
};

struct Switch {
   std::string name;
   std::string slice = "1";  // the slice identifier as text
   Variant variant = Variant::egressMask;
   std::vector< SwitchUnit > units;  // ascending; at least one
   Tcam tcam;
   ClassIds classIds;
   // The platform needs no per-VNI rules for known L3 multicast.
   bool isL3MulticastExempt = false;
};

// --- Published state; a withdrawal leaves the values (port, virtual port, VNI) default-built

// An interface has a chip port.
struct InterfacePort {
   Pelk::IntfId intf;
   VornalTypes::VornalPort port;
};

struct PortChannelMember {
   Pelk::IntfId portChannel;
   Pelk::IntfId member;
};

// There is an Ethernet segment on the interface. Its withdrawal takes all its VTEPs with it.
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

// There is a tunnel interface. Its withdrawal takes all its mappings with it.
struct TunnelInterface {
   Pelk::IntfId intf;
};

// The VRF is routed over the tunnel interface with that VNI.
struct VrfVni {
   Pelk::IntfId intf;
   L3::VrfName vrf;
   Vxlan::VniExtOrNone vni;
};

// An earlier run of the agent has left behind a request of a class id for the remote VTEP.
struct ClassIdRequest {
   Pelk::IpGenAddr vtep;
};

// The remote VTEP is granted the class id.
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

// A new entity replaces the one with its key and all its contents in one change. If there is none,
// it enters filled.
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

// --- Steps

struct Step {
   // Copies of a model share the actions, which nobody changes.
   std::shared_ptr< Action const > action;
   int line = 0;

   // The action, if it is of that kind.
   template< typename Kind > Kind const * as() const {
      return dynamic_cast< Kind const * >( action.get() );
   }
};

// --- The whole scenario

// Text trace levels of the handles that `handles` matches, in the form that Trace::levelsIs takes.
struct TraceLevels {
   std::string handles;
   std::string levels;
   int line = 0;  // 0: it does not come from the scenario
};

// A file that a scenario was read from.
struct SourceText {
   std::filesystem::path file;
   std::string text;
};

struct Model {
   std::string file;  // as the reader got it
   // Its own first, then that of the one that it is based on.
   std::vector< SourceText > texts;
   // The files that its steps name, whether or not the steps are taken.
   std::vector< std::filesystem::path > files;
   Sources sources;  // that `line` counts in
   std::string name;
   std::string description;
   Switch device;
   std::optional< Forwarding > forwarding;  // nothing: it forwards no frames
   std::vector< Change > published;         // before the plug-in is loaded
   std::filesystem::path featureFiles;      // the directory of the feature files
   std::vector< TraceLevels > trace;        // set before the plug-in is loaded
   std::vector< Step > steps;
   std::size_t ownSteps = 0;  // the first of `steps`; the others were added to the scenario
};

}  // namespace Scenario
