// The command line: finds the subcommand, and gives it its words.
#pragma once

#include <memory>
#include <ostream>
#include <variant>

#include <CommandLine/Command.h>

namespace CommandLine {

// Nothing is left but to end with this exit code: the parser has printed help, or said on standard
// error what is wrong with the usage.
struct Done {
   int exitCode = 0;
};

// Help goes to `out`.
std::variant< std::unique_ptr< Command >, Done > parse( int argc, char const * const * argv,
                                                        std::ostream & out );

}  // namespace CommandLine
