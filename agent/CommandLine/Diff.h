// `vornal diff`: what differs between the switches of two scenarios, or between two steps of one.
#pragma once

#include <filesystem>
#include <optional>

#include <CommandLine/Command.h>
#include <CommandLine/Comparison.h>
#include <CommandLine/ScenarioWords.h>
#include <Story/Table.h>

namespace CommandLine {

class Diff final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   struct Side {
      std::filesystem::path file;
      std::string option;  // that names the step
      std::optional< U32 > after;
   };

   Story::ExitCode read( Side const & side, Story::Table & state ) const;

   ScenarioWords scenario_;
   std::filesystem::path other_;
   std::optional< U32 > after_;
   std::optional< U32 > against_;
   Parts only_;
};

}  // namespace CommandLine
