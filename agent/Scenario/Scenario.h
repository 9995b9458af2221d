// The model of a scenario: a switch, what other agents publish before the plug-in is loaded, and
// the steps of a story.
//
// These are plain values; docs/scenarios.md describes the language that they are read from, and
// Scenario/Reader.h reads it. A model that the reader hands out is whole: every interface that it
// names is defined, every unit is one of the switch's, every path is well formed. Whether an entity
// or an attribute exists shows when a step is carried out; `line` is there to say where the step
// stands.
//
// Changes. Whatever agents publish or withdraw is a list of changes, each of which is one change of
// one attribute of one entity, and so one turn of the activity. They are in the order in which they
// are to happen: in steps as written; before the plug-in is loaded interfaces first, then port
// channels, segments, VTEPs and tunnel interfaces. What must enter before its parts does: a segment
// before its VTEPs, a tunnel interface before its mappings.
//
// A step is one alternative of Action, an expectation one of Expected; a new kind is a struct here,
// one small function each in Scenario/Steps.cpp (or Scenario/Expectations.cpp) and
// Scenario/Description.cpp, and its words in the documents.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <Audit/State.h>
#include <L3/VrfName.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <Quelm/Integers.h>
#include <Scenario/Drift.h>
#include <Scenario/Traffic.h>
#include <StateDatabase/EntityPath.h>
#include <Story/Difference.h>
#include <VornalCommon/ClassId.h>
#include <VornalTypes/VornalPort.h>
#include <Vxlan/VniExtOrNone.h>

namespace Scenario {

// --- the switch

using Audit::Variant;

// A field-processor group: Vornal::kIfpLocalBiasGroup and Vornal::kEfpLocalBiasGroup.
enum class TcamGroup { ingress, egress };

struct Unit {
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
   std::vector< Unit > units;  // ascending; at least one
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

// --- expectations

// One attribute of one entity; `key` is empty where there is none. Texts are in the text forms of
// Quelm/Text.h, as the generic interface (Kiv/Attribute.h) takes and gives them.
struct AttributeAt {
   StateDatabase::EntityPath entity;
   std::string attribute;
   std::string key;
};

struct AttributeEquals {
   AttributeAt at;
   std::string value;
};

// The attribute has, or lacks, its key.
struct AttributeHas {
   AttributeAt at;
   bool isPresent = true;
};

// The plug-in has marked its own dependency point, or has not.
struct PluginReady {
   bool isReady = true;
};

// The groups whose entry managers the plug-in has asked for so far, in order.
struct TcamGroupsAskedFor {
   std::vector< TcamGroup > groups;
};

// A qualifier or an action that a rule has, by its short name (Chip::nameOf), with its data, or
// with the ports of a port mask; without numbers any will do.
struct RuleFieldWanted {
   std::string name;
   std::optional< std::vector< U32 > > numbers;
};

// Rules that the plug-in holds in the group, on one unit or on all of them, which are as the rest
// says: `count` of them, or if that is empty at least one.
struct RulesLike {
   struct DefaultPriority {};

   TcamGroup group = TcamGroup::ingress;
   std::optional< U16 > unit;
   std::string name;  // contained in the rule's
   std::optional< bool > isWritten;
   std::optional< std::variant< DefaultPriority, U32 > > priority;
   std::vector< RuleFieldWanted > qualifiers;
   std::vector< RuleFieldWanted > actions;
   bool doesNothing = false;  // has no action
   std::optional< U32 > count;
};

// Lines logged or traced since the scenario began that contain `text`: `times` of them, or if that
// is empty at least one.
struct LogLine {
   std::string text;
   std::optional< U32 > times;
};

struct TraceLine {
   std::string handle;
   std::optional< int > level;  // nothing: any
   std::string text;
   std::optional< U32 > times;
};

// An audit made now finds the rules in step, or not.
struct InStep {
   bool isInStep = true;
};

// An audit made now finds differences of that kind, or if that is empty of any kind that is not
// known: `count` of them, or if that is empty at least one.
struct DifferencesLike {
   std::optional< Story::DifferenceKind > kind;
   std::optional< U32 > count;
};

using Expected = std::variant< AttributeEquals, AttributeHas, PluginReady, TcamGroupsAskedFor,
                               RulesLike, FramesLike, LogLine, TraceLine, InStep, DifferencesLike >;

struct Expectation {
   Expected what;
   int line = 0;
};

// --- steps

// A line of the story.
struct Note {
   std::string text;
};

// A sub-agent's dependency point becomes ready; its name without the group, "l2Ready".
struct Ready {
   std::string point;
};

struct Publish {
   std::vector< Change > changes;
};

struct Withdraw {
   std::vector< Change > changes;
};

// Sets an attribute, or inserts into it; `value` is empty where only a key is inserted.
struct Set {
   AttributeAt at;
   std::string value;
};

// Removes a key, or empties a reference.
struct Delete {
   AttributeAt at;
};

struct Call {
   StateDatabase::EntityPath entity;
   std::string operation;
   std::vector< std::string > arguments;
};

struct Expect {
   std::vector< Expectation > expectations;
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

struct Replace {
   std::vector< Replacement > replacements;
};

// Several changes that are made in one turn, one after the other.
struct Turn {
   using Part = std::variant< Ready, Publish, Withdraw, Replace, Set, Delete, Call >;
   struct PlacedPart {
      Part part;
      int line = 0;
   };

   std::vector< PlacedPart > parts;
};

// Of the calls of a chip's operation from now on (Chip::kFallibleOperations), number `number` is
// not made, and has this result code.
struct FailCall {
   std::string operation;
   U32 number = 1;
   S32 code = 0;
};

// Other users of the group hold `count` entries of it from now on, on one unit or on each of them.
struct ForeignEntries {
   TcamGroup group = TcamGroup::ingress;
   std::optional< U16 > unit;
   U32 count = 0;
};

// The allocator of class ids grants nothing while it is paused.
struct ClassIdAllocator {
   bool isPaused = false;
};

// Shows an entity, or all rules.
struct Dump {
   struct Rules {};
   std::variant< Rules, StateDatabase::EntityPath > what;
};

// The rules are audited, the plug-in's own pass runs, or both.
enum class Verify { audit, plugIn, both };

using Action = std::variant< Note, Ready, Publish, Withdraw, Replace, Set, Delete, Call, Turn,
                             ForeignEntries, ClassIdAllocator, Dump, Frame, Capture,
                             DesignatedForwarder, Drift, FailCall, Verify, Expect >;

struct Step {
   Action action;
   int line = 0;
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
