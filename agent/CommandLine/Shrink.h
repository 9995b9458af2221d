// `vornal shrink`: makes a scenario that fails or stops as short as it can be.
#pragma once

#include <CommandLine/Command.h>
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
   Scenario::Yaml shrunk( Scenario::Yaml const & document, Shrinking::Trials & trials );
   // In a worker.
   Shrinking::Ending run( Scenario::Model const & scenario ) const;

   ScenarioWords scenario_;
   OutputFile output_;
   Jobs jobs_;
   std::string left_;  // what is left so far
};

}  // namespace CommandLine
