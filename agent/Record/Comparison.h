// Compares a run with the record of an earlier one, event by event, up to the first difference.
//
// Compared are the calls with their results, the log lines, the changes of the published state, the
// results of the plug-in's own passes, the steps, and the end. The text of a call at its call site,
// the lines of assertions and traces do not count, because they change with every edit.
#pragma once

#include <Record/Reader.h>
#include <Story/Observer.h>

namespace Record {

class Comparison final : public Story::Observer {
 public:
   enum class Result {
      open,       // the run goes on
      same,       // both runs have ended alike
      different,  // at `expected` and `came`
      cut         // alike up to the end of the record, which is not that of its run
   };

   // Thrown by onEvent() as soon as the result is known, to end the run.
   struct Over {};

   // Events are read behind the inputs. The reader must outlive the comparison.
   explicit Comparison( Reader & reader ) : reader_( reader ) {}

   void onEvent( Story::Event const & event ) override;

   Result result() const { return result_; }
   // --- At a difference
   // The event of the record, and that of the run.
   Story::Event const & expected() const { return expected_; }
   Story::Event const & came() const { return came_; }
   // --- So far
   std::optional< Story::StepBegins > const & step() const { return step_; }
   std::optional< Story::PublishedChange > const & published() const { return published_; }
   U64 eventsAlike() const { return eventsAlike_; }
   // The plug-in's file that the record names; empty: none so far.
   std::string const & recordedPlugin() const { return recordedPlugin_; }

 private:
   // The record's next event that is compared.
   std::optional< Story::Event > nextExpected();
   void note( Story::Event const & event );

   Reader & reader_;
   Result result_ = Result::open;
   Story::Event expected_;
   Story::Event came_;
   std::optional< Story::StepBegins > step_;
   std::optional< Story::PublishedChange > published_;
   U64 eventsAlike_ = 0;
   std::string recordedPlugin_;
};

// The event in words, for a message about a difference.
std::string wordsOf( Story::Event const & event );

}  // namespace Record
