// `vornal show`: runs a scenario and shows the state that it leads to.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <CommandLine/Command.h>
#include <CommandLine/ScenarioWords.h>
#include <StateDatabase/EntityPath.h>
#include <Story/Event.h>

namespace CommandLine {

class Show final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   void print( std::vector< Story::EntityShown > const & entities, std::ostream & out ) const;

   ScenarioWords scenario_;
   std::string what_;
   std::string pathText_;
   std::optional< StateDatabase::EntityPath > path_;  // nothing: the paths at which entities are
};

}  // namespace CommandLine
