// `vornal shrink`: makes a scenario that fails or stops as short as it can be.
#pragma once

#include <CommandLine/Command.h>
#include <CommandLine/FilesBeside.h>
#include <CommandLine/Jobs.h>
#include <CommandLine/OutputFile.h>
#include <CommandLine/ScenarioWords.h>
#include <Shrinking/Ending.h>
#include <Shrinking/Trials.h>

namespace CommandLine {

class Shrink final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override { scenario_.readWords(); }
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   // In words.
   struct Sizes {
      std::string before;
      std::string after;
   };

   // In a worker.
   Shrinking::Ending run( Scenario::Model const & scenario ) const;
   // Throws Story::InputError when the run of a record is another one today. Held, or the code of
   // a signal.
   Story::ExitCode compareWithRecord( Scenario::Model const & scenario ) const;
   Story::ExitCode search( WholeScenario const & source, std::ostream & out );
   Scenario::Yaml shrunk( Scenario::Yaml const & document, Shrinking::Trials & trials );
   // The text of the short scenario; its files come beside it.
   std::string textOf( Scenario::Yaml document, Shrinking::Ending const & ending,
                       Sizes const & sizes, WholeScenario const & source ) const;
   FilesBeside filesBeside() const { return { output_, scenario_.record() != nullptr }; }

   ScenarioWords scenario_;
   OutputFile output_;
   Jobs jobs_;
   std::string left_;  // what is left so far
};

}  // namespace CommandLine
