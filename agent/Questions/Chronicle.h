// What questions ask about the past of the switch: when a rule was programmed and last changed, how
// full a group has been and whom it refused, which frames the rules kept back, in which step a
// frame came in, and the log by step.
//
// An observer of the run, in the process of the agent, from before the plug-in is loaded.
// Memory: proportional to the steps, the rules, the lines of the log, and the (VTEP, port, rule)
// that kept frames back.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <Story/Observer.h>

namespace Questions {

class Chronicle final : public Story::Observer {
 public:
   // Of a rule: the step in which it was programmed, and the last one that changed it.
   struct Steps {
      U32 programmed = 0;
      U32 changed = 0;
   };
   // Of a group on a unit.
   struct Room {
      U32 used = 0;     // entries of the plug-in
      U32 foreign = 0;  // entries of others
      U32 most = 0;     // of all of them together, so far
      U32 refused = 0;  // requests that found no room
   };
   struct KeptBack {
      std::string vtep;  // that the frame came from; empty for a host's
      std::string interface;
      U32 port = 0;  // of the rule's unit
      Chip::RuleKey rule;

      friend auto operator<=>( KeptBack const &, KeptBack const & ) = default;
   };
   struct LogLine {
      U32 step = 0;
      std::string name;
      std::string line;
   };

   void onEvent( Story::Event const & event ) override;

   std::map< Chip::RuleKey, Steps > const & rules() const { return rules_; }
   std::map< std::pair< U32, Vornal::TcamGroupAssignment >, Room > const & rooms() const {
      return rooms_;
   }
   // The number of frames.
   std::map< KeptBack, U64 > const & keptBack() const { return keptBack_; }
   std::vector< LogLine > const & log() const { return log_; }
   // What the step does, in words.
   std::string const & textOf( U32 step ) const { return steps_.at( step ); }
   // The step in which that frame of the run came in; nothing for a frame that has not.
   std::optional< U32 > stepOf( U64 frame ) const;

 private:
   void note( Story::StepBegins const & event );
   void note( Story::RuleIs const & event );
   void note( Story::RuleGone const & event );
   void note( Story::CallMade const & event );
   void note( Story::ForeignEntriesAre const & event );
   void note( Story::FrameForwarded const & event );

   U32 step_ = 0;
   std::map< U32, std::string > steps_;
   std::map< U64, U32 > firstFrames_;  // the steps by the first frame of each
   U64 frames_ = 0;
   std::map< Chip::RuleKey, Steps > rules_;
   std::map< std::pair< U32, Vornal::TcamGroupAssignment >, Room > rooms_;
   std::map< KeptBack, U64 > keptBack_;
   std::vector< LogLine > log_;
};

}  // namespace Questions
