// Whether a stream of this process is a terminal, wants colours, and how wide it is.
#pragma once

#include <cstddef>

namespace CommandLine {

bool isTerminal( int fd );

// A terminal, unless it is a dumb one or NO_COLOR is set (https://no-color.org).
bool isColoured( int fd );

// The number of columns: the terminal's, that of COLUMNS, or no limit for a file or a pipe.
std::size_t widthOf( int fd );

}  // namespace CommandLine
