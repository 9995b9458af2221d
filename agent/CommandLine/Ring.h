// `vornal ring`: prints the lines of a binary trace ring.
#pragma once

#include <filesystem>

#include <CommandLine/Command.h>

namespace CommandLine {

class Ring final : public Command {
 public:
   void declare( CLI::App & app ) override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   std::filesystem::path file_;
};

}  // namespace CommandLine
