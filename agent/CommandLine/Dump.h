// `vornal dump`: writes the state that a scenario leads to as a scenario of its own.
#pragma once

#include <functional>
#include <optional>

#include <CommandLine/Command.h>
#include <CommandLine/FilesBeside.h>
#include <CommandLine/Moment.h>
#include <CommandLine/OutputFile.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/ScenarioWords.h>
#include <Dumping/Dumper.h>

namespace CommandLine {

class Dump final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   Story::ExitCode dump( WholeScenario const & source, std::ostream & out ) const;
   ScenarioRun runOf( Scenario::Model const & model ) const;
   // The run up to the moment of the dump.
   ScenarioRun runUntilThen( Scenario::Model const & model ) const;
   Dumping::Switches switchesFor( WholeScenario const & source, std::filesystem::path const & place,
                                  std::function< void() > const & progress ) const;
   // The text of the dump; its files come beside it.
   std::string textOf( Dumping::Dump dump, Dumping::Original const & original,
                       WholeScenario const & source, std::size_t last ) const;

   FilesBeside filesBeside() const { return { output_, scenario_.record() != nullptr }; }

   ScenarioWords scenario_;
   OutputFile output_;
   Moment after_{ "--after" };
};

}  // namespace CommandLine
