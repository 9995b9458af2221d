// The words that every command with a scenario takes.
//
// The scenario's file can be the record of a run. In the shell, the scenario is not a file but the
// steps that were carried out so far. A command then has a source of scenarios, and takes no words
// that name one.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include <CommandLine/Command.h>
#include <CommandLine/RunWords.h>
#include <CommandLine/ScenarioFile.h>
#include <Scenario/Whole.h>

namespace CLI {
class App;
}

namespace CommandLine {

struct ScenarioSource {
   std::function< Scenario::Model( AddedSteps const & added ) > read;
   Host::AgentConfig config;
   std::chrono::milliseconds turnLimit{};
};

// A scenario, and its document for those who write another one after it.
struct WholeScenario {
   Scenario::Model model;
   Scenario::Whole whole;
   Scenario::Root root{};  // of the files that the document names
};

class ScenarioWords {
 public:
   enum class Answers {
      textOrJson,
      text,
      dialogue  // text, and questions on standard input
   };
   // What can stand in place of a scenario.
   enum class Takes { scenarios, records };

   // To be called before declare(); the source must outlive the words.
   void sourceIs( ScenarioSource const & source ) { source_ = &source; }
   void declare( CLI::App & app, Answers answers = Answers::textOrJson,
                 Takes takes = Takes::records );
   // Throws CLI::ValidationError.
   void readWords();

   std::filesystem::path const & file() const { return file_; }
   bool isJson() const { return isJson_; }
   // How long a turn may take; 0: as long as it likes.
   std::chrono::milliseconds turnLimit() const {
      return source_ ? source_->turnLimit : run_.turnLimit();
   }
   // The scenario, with more steps at its end.
   Scenario::Model read( AddedSteps const & added = {} ) const;
   // The scenario together with its document; not for a source.
   WholeScenario readWhole() const;
   // In messages: its file, also for one from standard input.
   std::string nameOf( WholeScenario const & whole ) const;
   // nullptr: the scenario is none.
   RecordedRun const * record() const { return source_ ? nullptr : input().record(); }
   // Those of a run of it. Finds the plug-in; throws Story::InputError where there is none.
   Host::AgentConfig config() const;
   std::filesystem::path plugin() const { return run_.plugin(); }

 private:
   void declareJson( CLI::App & app );
   ScenarioFile const & input() const;

   ScenarioSource const * source_ = nullptr;
   std::filesystem::path file_;
   mutable std::optional< ScenarioFile > input_;  // opened when it is first asked for
   RunWords run_;
   bool isJson_ = false;
};

// A command with a scenario.
class ScenarioCommand : public Command {
 public:
   // To be called before declare(); the source must outlive the command.
   void sourceIs( ScenarioSource const & source ) { scenario_.sourceIs( source ); }

 protected:
   ScenarioWords scenario_;
};

}  // namespace CommandLine
