// A moment of a run, as an option names it: after a step, or at a time that a record knows.
//
//    --after 7        after step 7; 0 is start-up
//    --after 2.5s     after the last step that was over when the agent's clock had that time
#pragma once

#include <optional>
#include <string>

#include <CommandLine/ScenarioFile.h>

namespace CLI {
class App;
}

namespace CommandLine {

class Moment {
 public:
   explicit Moment( std::string option ) : option_( std::move( option ) ) {}

   void declare( CLI::App & app, std::string const & purpose );
   // Throws CLI::ValidationError.
   void readWords();

   bool isGiven() const { return !text_.empty(); }
   // Ends the run there, if a moment is given. Story::InputError, which names the option, for a
   // step behind the last one and for a time where no record is.
   void limit( Host::AgentConfig & config, Scenario::Model const & scenario,
               RecordedRun const * record ) const;

 private:
   void checkStepOf( RecordedRun const & record, U32 step, std::size_t last ) const;

   std::string option_;  // "--after"
   std::string text_;
   std::optional< U32 > step_;
   std::optional< U64 > time_;  // in nanoseconds
};

}  // namespace CommandLine
