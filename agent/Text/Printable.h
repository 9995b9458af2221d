// Makes foreign texts safe to show: a scenario, a plug-in, a trace ring or a file name can hold
// characters that a terminal takes for a command.
#pragma once

#include <string>
#include <string_view>

namespace Text {

// Writes out all characters that must not be printed: control characters (C0, DEL and C1) as \n,
// \t, \x1b or \u009b, characters that end a line or turn the direction of the text as \u2028 or
// \u202e, code points that are no characters as \uffff, bytes that are not UTF-8 as \xff. Leaves
// printable characters alone, so a second
// application changes nothing.
std::string printable( std::string_view text );

// The same for a text of several lines; line ends stay.
std::string printableLines( std::string_view text );

}  // namespace Text
