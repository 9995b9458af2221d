// `vornal diff`: what differs between the switches of two scenarios, or between two steps of one.
#pragma once

#include <filesystem>
#include <optional>

#include <CommandLine/Command.h>
#include <CommandLine/Comparison.h>
#include <CommandLine/Moment.h>
#include <CommandLine/ScenarioWords.h>
#include <Story/Table.h>

namespace CommandLine {

class Diff final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   Story::ExitCode read( ScenarioFile const & file, Moment const & moment,
                         Story::Table & state ) const;

   ScenarioWords scenario_;
   std::filesystem::path other_;
   Moment after_{ "--after" };
   Moment against_{ "--against" };
   Parts only_;
};

}  // namespace CommandLine
