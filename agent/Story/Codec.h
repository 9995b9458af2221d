// Events as text, one line each. In this form they travel from the agent's process to the one that
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

// Reads the event of a line. Throws std::runtime_error for any other text, and for a number with a
// fraction in place of a whole one.
Event decoded( std::string const & line );

}  // namespace Story
