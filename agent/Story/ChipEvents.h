// Events of the chip: calls, rules, frames.
#pragma once

#include <string>
#include <variant>

#include <Calls/HardwareCall.h>
#include <Pipeline/Story.h>
#include <Quelm/Integers.h>
#include <Snapshot/Rules.h>

namespace Story {

class Document;

// A call reached the chip.
struct CallMade {
   static constexpr char const * kName = "callMade";
   Chip::HardwareCall call;

   static void fields( auto & event, auto && field ) { field( "call", event.call ); }
   void addTo( Document & document ) const;
};

// A rule was added or changed; this is its present form.
struct RuleIs {
   static constexpr char const * kName = "ruleIs";
   Chip::Rule rule;

   static void fields( auto & event, auto && field ) { field( "rule", event.rule ); }
};

// A rule was removed.
struct RuleGone {
   static constexpr char const * kName = "ruleGone";
   Chip::RuleKey key;

   static void fields( auto & event, auto && field ) { field( "key", event.key ); }
};

// A step dumps the present rules of the chips.
struct RulesDumped {
   static constexpr char const * kName = "rulesDumped";
   Chip::Rules rules;

   static void fields( auto & event, auto && field ) { field( "rules", event.rules ); }
   void addTo( Document & document ) const;
};

// Other users of a group hold this many of its entries now.
struct ForeignEntriesAre {
   static constexpr char const * kName = "foreignEntriesAre";
   U32 unit = 0;
   Vornal::TcamGroupAssignment group = 0;
   U32 asked = 0;
   U32 held = 0;  // less than requested if the group has no more room

   static void fields( auto & event, auto && field ) {
      field( "unit", event.unit );
      field( "group", event.group );
      field( "asked", event.asked );
      field( "held", event.held );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

// This many frames come in; an event of its own tells each.
struct FramesBegin {
   static constexpr char const * kName = "framesBegin";
   std::string arrival;  // the interface
   U64 frames = 0;

   static void fields( auto & event, auto && field ) {
      field( "arrival", event.arrival );
      field( "frames", event.frames );
   }
};

// A frame has gone through the switch.
struct FrameForwarded {
   static constexpr char const * kName = "frameForwarded";
   U64 number = 0;  // counts from 1 in the run
   Chip::FrameStory frame;

   static void fields( auto & event, auto && field ) {
      field( "number", event.number );
      field( "frame", event.frame );
   }
   void addTo( Document & document ) const;
};

using ChipEvents = std::variant< CallMade, RuleIs, RuleGone, RulesDumped, ForeignEntriesAre,
                                 FramesBegin, FrameForwarded >;

}  // namespace Story
