// What is published or withdrawn, in one line for people; the same line in every form of the
// output.
//
//    Ethernet1 on unit0/port1/mod1
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <Scenario/Scenario.h>

namespace Scenario {

// "egress-mask": the word of the language.
std::string_view nameOf( Variant variant );

// "Ethernet1 on unit0/port1/mod1"; with `isWithdrawn` what goes, without the values it had.
std::string description( Published const & published, bool isWithdrawn );
// Every change, with " " in front of the first and ", " in front of the others.
std::string description( std::vector< Change > const & changes, bool isWithdrawn );

}  // namespace Scenario
