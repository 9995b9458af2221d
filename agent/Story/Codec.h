// Events as text, one line each: how they travel from the process of the agent to the one that
// tells the story.
//
// A line is a JSON object: the event's name under "event", and its fields. Reading is the inverse
// of writing for every event. Bytes that are not UTF-8 (a name from a damaged file) are replaced.
#pragma once

#include <string>

#include <Story/Event.h>

namespace Story {

// The event's line, without line end.
std::string encoded( Event const & event );

// The event that `line` is. Throws std::runtime_error for anything else, a number with a fraction
// where a whole one belongs included.
Event decoded( std::string const & line );

}  // namespace Story
