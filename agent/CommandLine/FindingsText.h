// The findings of an exploration, for people and for programs.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <Exploring/KnownLimits.h>
#include <Story/Document.h>

namespace CommandLine {

inline constexpr char kSequence[] = "sequence";

// What was explored, with what was found.
struct Explored {
   std::string name;
   std::string file;
   std::string thing;  // that was tried: kSequence, "fault"
   Exploring::Findings findings;
   // The steps of a sequence of it, each in one line.
   std::function< std::vector< std::string >( Exploring::Sequence const & ) > stepsOf;
};

// With the scenarios that show each finding, where there are some.
void print( Explored const & explored, Exploring::KnownLimits const & limits, std::ostream & out );
Story::Json jsonOf( Explored const & explored, Exploring::KnownLimits const & limits );

}  // namespace CommandLine
