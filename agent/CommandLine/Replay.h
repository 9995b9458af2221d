// `vornal replay`: plays the record of a run again, and stops at the first difference.
#pragma once

#include <filesystem>

#include <CommandLine/Command.h>
#include <CommandLine/RunWords.h>

namespace CommandLine {

class Replay final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override { run_.readWords(); }
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   std::filesystem::path file_;
   RunWords run_;
   bool isJson_ = false;
};

}  // namespace CommandLine
