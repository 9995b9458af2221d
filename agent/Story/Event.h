// What can happen in a run, as typed events.
//
// Everything that happens passes once, in order, as one of these events to a Story::Observer: what
// the plug-in asks the agent for, what other agents publish, what reaches the chip, what is traced
// and logged, and where the run stands. Whoever wants to show, count, record or check a run is an
// observer of this one stream and needs nothing else.
//
// The order of a run:
//
//    RunBegins
//    PublishedChange...                      the state that is there before the plug-in
//    StepBegins{ 0 } ... StepEnds            start-up
//    StepBegins{ 1 } ... StepEnds            the scenario's steps, from 1
//    StepBegins{ n + 1 } ... StepEnds        verification, when it is asked for
//    StepBegins{ n + 1 } ... StepEnds        teardown
//    RunEnds; Stopped when the process did not get there; BadInput when it could not go on;
//    Interrupted when somebody wanted it to end
//
// Events are plain values without references to what they tell of: they outlive it, and travel from
// the process of the agent to the one that tells the story (Story/Codec.h). Each has a name, which
// is part of that form, and lists its fields for it.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <Calls/HardwareCall.h>
#include <Pipeline/Story.h>
#include <Quelm/Integers.h>
#include <Snapshot/Rules.h>
#include <Story/Difference.h>
#include <Story/EntityTree.h>

namespace Story {

// --- Where the run stands

struct RunBegins {
   static constexpr char const * kName = "runBegins";
   std::string scenario;  // the file, as it was given
   std::string title;
   std::string description;
   U32 steps = 0;  // of the scenario
};

enum class StepKind { StartUp, Scenario, Verification, Teardown };

struct StepBegins {
   static constexpr char const * kName = "stepBegins";
   StepKind kind = StepKind::Scenario;
   U32 number = 0;
   std::string text;
   std::string place;  // "FILE:LINE"; empty for what the scenario does not write
};

struct StepEnds {
   static constexpr char const * kName = "stepEnds";
   U32 number = 0;
};

// The agent has done everything, teardown included.
struct RunEnds {
   static constexpr char const * kName = "runEnds";
   U64 time = 0;  // of the agent's clock, in nanoseconds
};

// The input turned out to be wrong; nothing is done after it.
struct BadInput {
   static constexpr char const * kName = "badInput";
   std::string text;  // with its place in front
};

// What is probably not meant; the run goes on with it.
struct Warning {
   static constexpr char const * kName = "warning";
   std::string text;  // with its place in front
};

// --- What the plug-in asks the agent for

struct PluginLoaded {
   static constexpr char const * kName = "pluginLoaded";
   std::string file;
   std::vector< std::string > mounters;
};

struct MountAsked {
   static constexpr char const * kName = "mountAsked";
   std::string path;
   std::string type;
   std::string flags;
};

struct MountsDone {
   static constexpr char const * kName = "mountsDone";
   std::string mounter;
   std::string status;  // "complete", "partial", "failed"
   std::vector< std::string > problems;
};

struct EntityLookedUp {
   static constexpr char const * kName = "entityLookedUp";
   std::string path;
   std::string type;  // empty when there is none
};

struct SharedEntityAsked {
   static constexpr char const * kName = "sharedEntityAsked";
   std::string name;
   std::string type;  // empty when there is none
};

struct TcamGroupAsked {
   static constexpr char const * kName = "tcamGroupAsked";
   Vornal::TcamGroupAssignment group = 0;
   bool isThere = false;
};

struct VariantChosen {
   static constexpr char const * kName = "variantChosen";
   std::string variant;  // "egress-mask", "class-id"
   std::string type;
};

struct DependencyPointReady {
   static constexpr char const * kName = "dependencyPointReady";
   std::string point;
   bool isOfPlugin = false;
};

// --- What goes on

// One change of the published state, before those who watch it act on it.
struct PublishedChange {
   static constexpr char const * kName = "publishedChange";
   std::string path;  // of the entity, "/evpn/status/segmentStatus[Port-Channel2]"
   std::string attribute;
   std::string key;                    // empty for an attribute without keys
   std::optional< std::string > from;  // nothing: it was not there
   std::optional< std::string > to;    // nothing: it is gone
};

// Something reached the chip.
struct CallMade {
   static constexpr char const * kName = "callMade";
   Chip::HardwareCall call;
};

// A rule is now like this.
struct RuleIs {
   static constexpr char const * kName = "ruleIs";
   Chip::Rule rule;
};

// A rule is not there any more.
struct RuleGone {
   static constexpr char const * kName = "ruleGone";
   Chip::RuleKey key;
};

struct Traced {
   static constexpr char const * kName = "traced";
   std::string handle;
   int level = 0;
   std::string text;
};

struct Logged {
   static constexpr char const * kName = "logged";
   std::string name;
   std::string line;
};

struct ExpectationChecked {
   static constexpr char const * kName = "expectationChecked";
   std::string text;
   std::string place;  // "FILE:LINE"
   bool held = false;
   std::string found;  // what was there instead, when it did not hold
};

// Frames come in, so many of them; each is told by itself.
struct FramesBegin {
   static constexpr char const * kName = "framesBegin";
   std::string arrival;  // the interface
   U64 frames = 0;
};

// A frame has gone through the switch.
struct FrameForwarded {
   static constexpr char const * kName = "frameForwarded";
   U64 number = 0;  // from 1, in the run
   Chip::FrameStory frame;
};

// Other users of a group hold this many of its entries now.
struct ForeignEntriesAre {
   static constexpr char const * kName = "foreignEntriesAre";
   U32 unit = 0;
   Vornal::TcamGroupAssignment group = 0;
   U32 asked = 0;
   U32 held = 0;  // less than asked when there is no room for more
};

// What a step dumps: an entity, or the rules as they are in the chips.
struct EntityDumped {
   static constexpr char const * kName = "entityDumped";
   std::string path;
   EntityTree tree;
};

struct RulesDumped {
   static constexpr char const * kName = "rulesDumped";
   Chip::Rules rules;
};

// An audit of the rules (Audit/Audit.h) was made.
struct Audited {
   static constexpr char const * kName = "audited";
   U32 rules = 0;    // called for
   U32 entries = 0;  // in the chip
   std::vector< Story::Difference > differences;
   std::vector< std::string > unprotected{};  // VTEPs that a rule is missing for
};

// The plug-in's own pass over its rules. One that begins and is not told of again has stopped the
// process.
struct PluginPass {
   static constexpr char const * kName = "pluginPass";
   enum class State {
      Begins,
      Held,
      Absent,  // there is no state machine yet
      Skipped  // it has compared nothing
   };
   State state = State::Begins;
   std::string reason{};  // why it was skipped
};

// An entity that was asked to be shown.
struct EntityShown {
   static constexpr char const * kName = "entityShown";
   std::string path;
   EntityTree tree;
};

// --- What the process of the agent left behind

// One line that the process wrote to standard error or standard output.
struct OutputLine {
   static constexpr char const * kName = "outputLine";
   std::string text;
};

struct Assertion {
   std::string file;
   int line = 0;
   std::string function;
   std::string expression;
};

// The process did not get to the end.
struct Stopped {
   static constexpr char const * kName = "stopped";
   std::string reason;  // "signal 6 (Aborted)", "exit code 1"
   std::optional< Assertion > assertion;
   std::vector< std::string > output;  // its last lines
   std::vector< Traced > trace;        // the last lines of the trace ring
   // A turn did not come to its end in time, and the process was ended; `reason` is "turn limit of
   // 60 s".
   bool isOverTime = false;
};

// Somebody wanted the program to end before the run was over.
struct Interrupted {
   static constexpr char const * kName = "interrupted";
   int signal = 0;
   std::string reason;  // "signal 2 (Interrupt)"
};

using Event =
   std::variant< RunBegins, StepBegins, StepEnds, RunEnds, BadInput, Warning, PluginLoaded,
                 MountAsked, MountsDone, EntityLookedUp, SharedEntityAsked, TcamGroupAsked,
                 VariantChosen, DependencyPointReady, PublishedChange, CallMade, RuleIs, RuleGone,
                 Traced, Logged, ExpectationChecked, FramesBegin, FrameForwarded, ForeignEntriesAre,
                 EntityDumped, RulesDumped, Audited, PluginPass, EntityShown, OutputLine, Stopped,
                 Interrupted >;

// Calls the one of several functions that takes the event at hand.
template< typename... F > struct Overloaded : F... { using F::operator()...; };
template< typename... F > Overloaded( F... ) -> Overloaded< F... >;

}  // namespace Story
