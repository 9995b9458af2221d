// The words that every command takes that runs scenarios.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

namespace CLI {
class App;
}

namespace CommandLine {

class RunWords {
 public:
   void declarePlugin( CLI::App & app );
   void declareTurnLimit( CLI::App & app );
   // Throws CLI::ValidationError.
   void readWords();

   // Finds the plug-in; throws Story::InputError where there is none.
   std::filesystem::path plugin() const;
   // How long a turn may take; 0: as long as it likes.
   std::chrono::milliseconds turnLimit() const { return turnLimit_; }

 private:
   std::string plugin_;  // empty: the one that comes with the program
   std::string turnLimitText_;
   std::chrono::milliseconds turnLimit_{};
};

}  // namespace CommandLine
