// What the program does with a scenario, out of the document of `vornal run --json`.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <Frames/Frames.h>
#include <History/Event.h>

namespace Run {

// A place by which a frame could have left.
struct Place {
   std::string intf;
   std::string vtep;  // empty for a local place
   std::optional< unsigned > unit;
   unsigned port = 0;
   std::string verdict;

   bool isSent() const { return verdict == "sent"; }
   bool isKeptBack() const { return verdict == "masked" || verdict == "dropped"; }
};

struct Frame {
   unsigned number = 0;
   Reference::Frame frame;
   std::string dropReason;  // of the whole frame
   std::vector< Place > places;
};

struct Step {
   std::string text;
   std::vector< std::string > calls;    // as Reference::Call::text() writes them
   std::multiset< std::string > rules;  // all that stand after the step, as Reference::Rule::text()
   std::set< std::string > requests;    // of class ids, after the step
   std::vector< Reference::Event > grants;  // and ends of grants, in order
   std::vector< std::string > log;
   std::vector< Frame > frames;
   std::string
      pass;  // what became of a verification pass: "held", "skipped", "absent"; or nothing is said
};

struct Stopped {
   std::size_t step = 0;
   std::string expression;
   std::string function;
   std::string output;  // the last line
};

struct Document {
   std::vector< Step > steps;  // from 0, start-up
   std::optional< Stopped > stop;
   std::string error;  // the input was wrong, perhaps only from a step on
};

Document of( std::filesystem::path const & scenario,
             std::set< std::string > const & requestsBefore = {} );
// Out of the document's text. std::runtime_error when it is none.
Document in( std::string const & text, std::set< std::string > const & requestsBefore = {} );

}  // namespace Run
