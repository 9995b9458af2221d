// Whether a stream of this process is a terminal, and wants colours.
#pragma once

namespace CommandLine {

bool isTerminal( int fd );

// A terminal, unless it is a dumb one or NO_COLOR is set (https://no-color.org).
bool isColoured( int fd );

}  // namespace CommandLine
