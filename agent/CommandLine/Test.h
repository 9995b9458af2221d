// `vornal test`: runs all scenarios below folders, side by side, and tells which failed.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <CommandLine/Command.h>
#include <CommandLine/Jobs.h>
#include <CommandLine/RunWords.h>
#include <Testing/Report.h>

namespace CommandLine {

class Test final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override { words_.readWords(); }
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   // In a worker.
   void checkJUnit( std::vector< std::filesystem::path > const & files ) const;
   Testing::Result run( std::filesystem::path const & file ) const;
   Testing::Tested testAll( std::vector< std::filesystem::path > const & files,
                            Testing::Report & report ) const;

   std::vector< std::filesystem::path > paths_;
   RunWords words_;
   Jobs jobs_;
   std::filesystem::path junit_;  // empty: no such file
   bool isVerbose_ = false;
};

}  // namespace CommandLine
