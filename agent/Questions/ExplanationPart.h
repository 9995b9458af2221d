// The part of an explanation that is about one interface.
#pragma once

#include <Story/Node.h>

namespace Questions {

// The frame with its tunnel, its decision, its ingress lookups and its verdict, and of the copies
// and the interfaces without one those of that interface or port channel. A frame that was dropped
// has the same answer for every interface.
//
// Throws Story::InputError for a name that the explanation does not have.
Story::Node partAbout( Story::Node const & frame, std::string const & interface );

}  // namespace Questions
