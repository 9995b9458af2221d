// Events as bytes. In this form they travel from the agent's process to the one that tells the
// story, and stand in records of runs.
//
// The bytes are the event's number in the list of events, and its fields (Story/Binary.h). Reading
// is the inverse of writing for every event, whatever bytes its texts hold.
#pragma once

#include <string>
#include <string_view>

#include <Story/Event.h>

namespace Story {

std::string encoded( Event const & event );
// Appends the event's bytes.
void encodeInto( std::string & bytes, Event const & event );

// Reads the event of exactly these bytes. Throws std::runtime_error for any others.
Event decoded( std::string_view bytes );

}  // namespace Story
