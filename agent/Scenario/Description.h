// What a step does, and what is expected, in one line for people; the same line in every form of
// the output.
//
//    ready subagents::l2Ready
//    publish Ethernet1 on unit0/port1/mod1
//    expect plug-in ready
#pragma once

#include <string>
#include <string_view>

#include <Scenario/Scenario.h>

namespace Scenario {

// "egress-mask", "ingress": the words of the language.
std::string_view nameOf( Variant variant );
std::string_view nameOf( TcamGroup group );

// "Ethernet1 on unit0/port1/mod1"; with `isWithdrawn` what goes, without the values it had.
std::string description( Published const & published, bool isWithdrawn );
// "plug-in ready".
std::string description( Expected const & expected );
// "publish " and every change, "expect " and every expectation, separated by ", ".
std::string description( Action const & action );

}  // namespace Scenario
