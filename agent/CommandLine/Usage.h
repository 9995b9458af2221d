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

// What is wrong with the name of a file or a folder; empty when it can be one. A CLI11 check.
std::string problemOfName( std::string const & text );

}  // namespace CommandLine
