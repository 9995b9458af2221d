// `vornal check`: finds every mistake of scenarios that shows without a run.
#pragma once

#include <filesystem>
#include <vector>

#include <CommandLine/Command.h>

namespace CommandLine {

class Check final : public Command {
 public:
   void declare( CLI::App & app ) override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   std::vector< std::filesystem::path > files_;
   bool isJson_ = false;
};

}  // namespace CommandLine
