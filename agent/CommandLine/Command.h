// A subcommand of the program.
//
// A subcommand is one class in one pair of files, and a row of CommandLine/Table.cpp. It says which
// words it takes, turns them into values, and does the work.
//
// Failures: readWords() throws CLI::ValidationError. perform() throws Scenario::ReadError,
// Story::InputError, std::system_error or Quelm::Error before anything is loaded; a mistake that
// shows later is printed on standard error. Exceptions of `out` (OutputStream.h) pass through and
// end the run.
//
// Neighbours: Parser.h builds the command line from the table; docs/program.md describes the
// commands.
#pragma once

#include <ostream>
#include <string_view>
#include <vector>

#include <Story/Outcome.h>

namespace CLI {
class App;
}

namespace CommandLine {

class Command {
 public:
   Command() = default;
   Command( Command const & ) = delete;
   Command & operator=( Command const & ) = delete;
   virtual ~Command() = default;

   // Declares the words that it takes, and the purpose of each.
   virtual void declare( CLI::App & app ) = 0;
   // The texts that the word can have, for completion and the manual; none: it is not a choice.
   virtual std::vector< std::string_view > choicesOf( std::string_view /*word*/ ) const {
      return {};
   }
   // Turns the words that were given into values.
   virtual void readWords() {}
   // Does the work and prints the result on `out`, the program's standard output.
   virtual Story::ExitCode perform( std::ostream & out ) = 0;
};

}  // namespace CommandLine
