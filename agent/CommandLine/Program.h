// The program `vornal`.
#pragma once

namespace CommandLine {

// Does what the command line asks for; the program's exit code.
int program( int argc, char const * const * argv );

}  // namespace CommandLine
