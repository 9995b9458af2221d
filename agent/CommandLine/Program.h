// The program `vornal`.
#pragma once

namespace CommandLine {

// Carries out the command line; returns the program's exit code.
int program( int argc, char const * const * argv );

}  // namespace CommandLine
