// `vornal explain`: why a frame leaves a switch by some ports and not by others, as a tree.
//
// The frame is one that the scenario sends, one of a capture, or one written in the scenario's own
// words.
#pragma once

#include <optional>
#include <string>

#include <CommandLine/Moment.h>
#include <CommandLine/ScenarioWords.h>
#include <Scenario/Scenario.h>
#include <Traffic/FrameAsked.h>

namespace CommandLine {

class Explain final : public ScenarioCommand {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   bool isWritten() const { return frame_.starts_with( '{' ); }
   // The scenario and the frame that is asked for.
   Scenario::Model read( Traffic::FrameAsked & asked ) const;

   std::string frame_;
   std::string on_;  // the interface of a capture's frame; empty: that of the scenario's step
   std::optional< Traffic::FrameAsked > asked_;  // nothing: it is written
   Moment after_{ "--after" };
   std::string interface_;  // to explain alone; empty: all of them
};

}  // namespace CommandLine
