// Session: the steps that a shell has carried out on a switch.
//
// No process lives between two commands. A session is a scenario's text and a list of steps: the
// scenario's own ones, in their order, and typed ones between them. Each question and each further
// step runs the whole list in a new process. So an answer is what a run of the saved list would
// give, undoing is leaving out the last step, and a plug-in that stopped leaves nothing behind.
//
//    auto const attempt = session.typed( "withdraw: { vteps: [ 10.0.0.2 ] }", 7 );
//    ...                                   // run attempt.scenario
//    session.take( attempt, ending );
//
// The whole list goes through the reader each time, so all its checks hold for it: a typed step can
// withdraw only what is published at that point. A typed step's place is "shell:LINE", and the
// files that it names are relative to the current directory. The scenario's file is read once.
//
// Failures: Scenario::ReadError, Story::InputError. They leave the session unchanged.
#pragma once

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <Steps/Reader.h>
#include <Story/Outcome.h>

namespace Shell {

struct Done {
   std::string text;  // as it was typed; empty: the scenario's own
   int line = 0;      // of the input, of a typed step

   bool isTyped() const { return !text.empty(); }
};

// A longer list of steps, and its scenario.
struct Attempt {
   std::vector< Done > steps;
   Scenario::Model scenario;
};

// How the run of an attempt ended.
struct Ending {
   enum class Kind { over, stopped, cutShort };  // cut short: interrupted, or bad input in a step

   Kind kind = Kind::over;
   std::size_t step = 0;              // in which it ended
   std::set< std::size_t > failed{};  // the steps with expectations that did not hold
   bool isJudged = false;             // a stop: an expectation of it held or did not
};

class Session {
 public:
   // The name of typed text in problems.
   static constexpr std::string_view kInput = "shell";

   explicit Session( std::filesystem::path file );

   // --- The list

   std::string const & name() const { return name_; }
   std::string const & description() const { return description_; }
   // The steps that are done, all of them and the scenario's own; and how many own ones there are.
   std::size_t done() const { return done_.size(); }
   std::size_t ownDone() const { return ownIn( done_ ); }
   std::size_t own() const { return own_; }
   bool isStopped() const { return isStopped_; }
   // The number of times that the list has changed.
   std::size_t changes() const { return changes_; }
   // "two-leaves 8/12 +2": own steps done, own steps in all, typed ones; "stopped" at the end.
   std::string position() const;
   // Held, ExpectationFailed or Stopped, from the steps that are done.
   Story::ExitCode verdict() const;

   // --- The scenario of the list

   // With more steps at its end.
   Scenario::Model scenario( std::vector< Scenario::AddedStep > const & more = {} ) const;
   // The first steps of the list.
   Scenario::Model scenarioAfter( std::size_t steps ) const;

   // --- Further steps

   // The list as it is, for the first run.
   Attempt unchanged() const { return { done_, scenario() }; }
   // With the typed step at the end.
   Attempt typed( std::string const & text, int line ) const;
   // With the own steps up to that one, which is not done yet.
   Attempt ownUpTo( std::size_t number ) const;
   // Keeps the steps that were carried out: also one that stopped the process, as the last one, but
   // none that was cut short.
   void take( Attempt const & attempt, Ending const & ending );
   // Leaves out the last step.
   void undo();

   // A scenario that does all this when it runs from `file`.
   std::string saved( std::filesystem::path const & file ) const;

 private:
   static std::size_t ownIn( std::vector< Done > const & steps );
   Scenario::Model read( std::vector< Done > const & steps,
                         std::vector< Scenario::AddedStep > const & more = {} ) const;

   std::filesystem::path file_;
   std::string text_;
   std::string name_;
   std::string description_;
   std::size_t own_ = 0;
   std::vector< Done > done_;
   std::set< std::size_t > failed_;
   bool isStopped_ = false;
   bool isStopJudged_ = false;
   std::size_t changes_ = 0;
};

}  // namespace Shell
