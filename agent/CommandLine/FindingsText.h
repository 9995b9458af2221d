// The findings of an exploration, for people and for programs.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <Exploring/KnownLimits.h>
#include <Story/Document.h>

namespace CommandLine {

// What was explored, with what was found.
struct Explored {
   std::string name;   // for people
   Story::Json what;   // for programs: a document that names it
   std::string thing;  // that was tried: "sequence", "fault"
   Exploring::Findings findings;
   // The steps of a sequence of it, each in one line.
   std::function< std::vector< std::string >( Exploring::Sequence const & ) > stepsOf;
   // The scenario whose steps come behind these; empty: there is none.
   std::function< std::string( Exploring::Sequence const & ) > scenarioOf;
   // No limit has to show a finding with that sequence.
   std::function< bool( Exploring::Sequence const & ) > needsNoLimit;
};

// With the scenarios that show each finding, where there are some.
void print( Explored const & explored, Exploring::KnownLimits const & limits, std::ostream & out );
Story::Json jsonOf( Explored const & explored, Exploring::KnownLimits const & limits );

}  // namespace CommandLine
