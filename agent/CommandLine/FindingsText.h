// The findings of an exploration, for people and for programs.
#pragma once

#include <ostream>

#include <Exploring/KnownLimits.h>
#include <Story/Document.h>

namespace CommandLine {

// With the scenarios that show each of them, where there are some.
void print( Exploring::Exploration const & exploration, Exploring::Findings const & findings,
            Exploring::KnownLimits const & limits, std::ostream & out );
Story::Json jsonOf( Exploring::Exploration const & exploration,
                    Exploring::Findings const & findings, Exploring::KnownLimits const & limits );

}  // namespace CommandLine
