// How a run ended, and the exit code that says so.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <Story/Observer.h>
#include <Story/StopEvents.h>

namespace Story {

// The meaning of the program's exit code.
enum class ExitCode : int {
   Held = 0,
   ExpectationFailed = 1,
   BadInput = 2,
   Stopped = 3,
   // 128 plus the signal's number, as in shells.
   HungUp = 129,       // SIGHUP
   Interrupted = 130,  // SIGINT
   Terminated = 143    // SIGTERM
};

// The exit code of a run that this signal has ended.
ExitCode exitCodeOf( int signal );

class Outcome final : public Observer {
 public:
   void onEvent( Event const & event ) override;

   ExitCode exitCode() const;
   // The exit code of a command that answers a question about the switch at the end of the run:
   // expectations do not count, and there is no answer after any stop.
   ExitCode exitCodeOfAnswer() const;
   // "completed", "expectation-failed", "failed", "stopped", "interrupted", as in the JSON
   // document.
   std::string_view endName() const;

   U32 expectations() const { return expectations_; }
   U32 failedExpectations() const { return failedExpectations_; }

   // The step under way, or the last one.
   std::optional< StepBegins > const & step() const { return step_; }
   std::optional< Stopped > const & stopped() const { return stopped_; }
   std::optional< Interrupted > const & interrupted() const { return interrupted_; }
   // The mistake in the input; empty when there was none.
   std::string const & badInput() const { return badInput_; }
   // The known limits that the stop may be; empty for an unknown stop, or without a stop.
   std::vector< KnownLimit > const & limits() const { return limits_; }

 private:
   U32 expectations_ = 0;
   U32 failedExpectations_ = 0;
   std::optional< StepBegins > step_;
   std::optional< Stopped > stopped_;
   std::optional< Interrupted > interrupted_;
   std::string badInput_;
   StopEvents stopEvents_;
   std::vector< KnownLimit > limits_;
};

}  // namespace Story
