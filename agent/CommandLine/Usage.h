// What the program says about a command line that it does not understand.
#pragma once

#include <string>

namespace CLI {
class App;
class Error;
}  // namespace CLI

namespace CommandLine {

// The command, what is wrong with its words, and what would be right; ends with a line end.
std::string usageText( CLI::App const & app, CLI::Error const & error );

}  // namespace CommandLine
