// Describes published and withdrawn state in one line for people, the same in every form of the
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

// "Ethernet1 on unit0/port1/mod1"; with `isWithdrawn` without the values.
std::string description( Published const & published, bool isWithdrawn );
// All changes, with " " before the first and ", " before the others.
std::string description( std::vector< Change > const & changes, bool isWithdrawn );

}  // namespace Scenario
