// The record of a run in place of a scenario: its inputs can be played again up to any step.
//
// No state stands in a record. Who asks about the switch plays the inputs again, and SameStory
// holds the new run against the record, so that no answer is about another story than the recorded
// one.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include <CommandLine/ReplayInputs.h>
#include <Record/Comparison.h>

namespace CommandLine {

class RecordedRun {
 public:
   // Reads the whole record. Story::InputError when it holds no run.
   explicit RecordedRun( std::filesystem::path file );

   std::filesystem::path const & file() const { return file_; }
   Record::Setup const & setup() const { return inputs_.setup(); }
   // The scenario of the run, with more steps at its end.
   Scenario::Model scenario( std::vector< Scenario::AddedStep > const & more ) const {
      return inputs_.scenario( more );
   }
   Scenario::Whole whole() const { return inputs_.whole(); }
   Scenario::Root const & root() const { return inputs_.root(); }
   // The step that the recorded run ended with: that of `run --step`, or the last whole one of a
   // record that was cut. Nothing when it came to its own end.
   std::optional< U32 > lastStep() const;
   // The last step that was over at that time of the agent's clock, in nanoseconds; 0 is start-up.
   // Story::InputError when the clock has stood still.
   U32 stepAt( U64 time ) const;
   // Where the record was cut, in words; empty when the run in it came to its end.
   std::string cutText() const { return reader_.isComplete() ? "" : reader_.cutText(); }
   // The plug-in's file; empty when none was loaded.
   std::string const & plugin() const { return plugin_; }

 private:
   struct StepEnd {
      U32 step;
      U64 time;
   };

   void add( StepEnd const & end );

   std::filesystem::path file_;
   Record::Reader reader_;  // at its end
   ReplayInputs inputs_;
   std::vector< StepEnd > ends_;  // of start-up and the scenario's steps
   std::string plugin_;
};

// Compares a run with its record, up to the end of the last step that the run carries out.
class SameStory final : public Story::Observer {
 public:
   SameStory( RecordedRun const & record, U32 lastStep );

   void onEvent( Story::Event const & event ) override;

   // Throws Story::InputError when the run was another one.
   void check() const;

 private:
   RecordedRun const & record_;
   Record::Reader reader_;
   Record::Comparison comparison_;
   U32 lastStep_;
   bool isOver_ = false;
};

}  // namespace CommandLine
