// Messages about a wrong command line.
#pragma once

#include <string>

namespace CLI {
class App;
class Error;
}  // namespace CLI

namespace CommandLine {

// The command, the mistake in its words, and the remedy; ends with a line end.
std::string usageText( CLI::App const & app, CLI::Error const & error );

// The mistake, in the words of the command.
std::string mistakeIn( CLI::App const & command, CLI::Error const & error );

// What is wrong with the name of a file or a folder; empty when it can be one. A CLI11 check.
std::string problemOfName( std::string const & text );

// Why a word cannot be a command; empty when it is one.
std::string problemOfCommand( std::string const & word );

}  // namespace CommandLine
