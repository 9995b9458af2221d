// Texts of others as they may be shown to people: a scenario, a plug-in, a trace ring or a file
// name can hold what a terminal takes for a command.
#pragma once

#include <string>
#include <string_view>

namespace Text {

// The text with everything that is not to be printed written out: control characters (C0, DEL and
// C1) as \n, \t, \x1b or \u009b, characters that end a line or turn the direction of the text as
// \u2028 or \u202e, bytes that are no UTF-8 as \xff. What is printable is not changed by it, so
// nothing happens to a text that it is applied to twice.
std::string printable( std::string_view text );

// The same for a text of several lines, whose line ends stay.
std::string printableLines( std::string_view text );

}  // namespace Text
