// The contents of a report: a run as plain values. Report/Collector.h fills it, Report/Data.h
// writes it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <Report/Explanations.h>
#include <Report/FrameList.h>
#include <Report/RuleHistory.h>
#include <Report/Texts.h>
#include <Story/Event.h>
#include <Story/FrameTotals.h>
#include <Story/LimitIndex.h>

namespace Report {

// A run can be without end, and a page must stay quick. The rest is counted, and the page says so.
struct Limits {
   std::size_t frames = 50'000;  // listed; all are in the totals
   std::size_t explained = 10'000;
   std::size_t rules = 20'000;
   std::size_t lines = 2'000;  // of a step, and as many changes
};

// The parts of the switch that no event tells.
struct Device {
   struct Unit {
      U32 number = 0;
      U32 module = 0;
   };
   std::vector< Unit > units;
   std::vector< std::string > underlay;  // the interfaces that carry VXLAN
};

// A line of the story, by the kind of its event.
struct Line {
   TextId kind = 0;
   TextId text = 0;
};

struct Change {
   TextId path = 0;
   TextId attribute = 0;
   std::optional< TextId > key{};
   std::optional< TextId > from{};
   std::optional< TextId > to{};
};

struct Step {
   // Nothing for the state that is published before the plug-in is loaded.
   std::optional< Story::StepBegins > begins{};
   std::vector< Line > lines{};
   std::vector< Change > changes{};
   std::vector< RuleChange > rules{};
   std::vector< std::string > frameTable{};  // its frames by sender and kind, in lines
   U64 frames = 0;
   U64 calls = 0;
   U64 failedCalls = 0;
   std::size_t linesLeftOut = 0;
   std::size_t changesLeftOut = 0;
   // By the question, the number of the answer at the end of the step; the ones of the step before
   // where a stop came in between.
   std::map< std::string, std::size_t > tables{};
};

struct Ending {
   std::string name;  // as `end` of the JSON document
   U32 expectations = 0;
   U32 failedExpectations = 0;
   std::optional< Story::Stopped > stopped{};
   std::vector< Story::KnownLimit > limits{};
   std::string error;        // the mistake in the input; empty when there was none
   std::string interrupted;  // "signal 2 (Interrupt)"; empty when nobody wanted it to end
};

struct Model {
   explicit Model( Limits const & most )
         : limits( most ), rules( most.rules ), frames( most.frames ) {}

   Limits limits;
   Device device{};
   std::string title{};
   std::string file{};
   std::string description{};
   std::string variant{};
   std::vector< Step > steps{};
   // The answers to each question, each followed by another one.
   std::map< std::string, std::vector< Story::Table > > tables{};
   Texts texts{};
   RuleHistory rules;
   FrameList frames;
   Explanations explanations{};
   Story::FrameTotals totals{};
   Ending ending{};
};

}  // namespace Report
