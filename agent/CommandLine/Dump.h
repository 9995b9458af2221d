// `vornal dump`: writes the state that a scenario leads to as a scenario of its own.
#pragma once

#include <functional>
#include <optional>

#include <CommandLine/Command.h>
#include <CommandLine/OutputFile.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/ScenarioWords.h>
#include <Dumping/Dumper.h>

namespace CommandLine {

class Dump final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override { scenario_.readWords(); }
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   Story::ExitCode dump( WholeScenario const & source, std::ostream & out ) const;
   ScenarioRun runOf( Scenario::Model const & model ) const;
   Dumping::Switches switchesFor( Scenario::Model const & model,
                                  std::filesystem::path const & place,
                                  std::function< void() > const & progress ) const;

   ScenarioWords scenario_;
   OutputFile output_;
   std::optional< U32 > after_;
};

}  // namespace CommandLine
