// The words that every command with a scenario takes.
#pragma once

#include <chrono>
#include <filesystem>

#include <CommandLine/RunWords.h>
#include <Host/Agent.h>

namespace CLI {
class App;
}

namespace CommandLine {

class ScenarioWords {
 public:
   void declare( CLI::App & app );
   // Throws CLI::ValidationError.
   void readWords() { run_.readWords(); }

   std::filesystem::path const & file() const { return file_; }
   bool isJson() const { return isJson_; }
   // How long a turn may take; 0: as long as it likes.
   std::chrono::milliseconds turnLimit() const { return run_.turnLimit(); }
   // Finds the plug-in; throws Story::InputError where there is none.
   Host::AgentConfig config() const;

 private:
   std::filesystem::path file_;
   RunWords run_;
   bool isJson_ = false;
};

}  // namespace CommandLine
