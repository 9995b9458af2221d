// A frame's way through the switch, as a tree of statements.
//
// The chip explains what it compares (Explanation/Explanation.h). This adds the names of the
// published state: the VTEP of a source gport, the state that calls for a rule, the steps that
// programmed and changed it, and why a copy leaves that local bias might have kept back.
//
// It changes nothing. The grounds cost an audit of the rules, and hold until the published state or
// a rule changes; the explanation costs little beside that.
#pragma once

#include <Explanation/Explanation.h>
#include <Questions/Grounds.h>
#include <Story/Node.h>

namespace Questions {

// How many rules that miss a frame are told, for each lookup.
inline constexpr std::size_t kNearMisses = 4;

Story::Node explanationOf( Grounds const & grounds, Chip::Explanation const & why );

}  // namespace Questions
