// `vornal completion`: prints the completion of the program's command lines for a shell.
//
// Everything comes from the declarations of the commands, so a new command or option needs nothing
// here. What a word can be follows from its type: FILE, DIR, the texts of a choice; a positional
// word of any other type completes as a file.
#pragma once

#include <string>

#include <CommandLine/Command.h>

namespace CommandLine {

class Completion final : public Command {
 public:
   void declare( CLI::App & app ) override;
   std::vector< std::string_view > choicesOf( std::string_view word ) const override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   std::string shell_;
};

}  // namespace CommandLine
