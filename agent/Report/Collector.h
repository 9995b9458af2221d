// Collects the contents of a report from the events of a run.
//
// The agent has to tell the particulars of the run as well (Host/Particulars.h): the explanation of
// each frame, and after each step the answers to the questions of tables(). Without these the
// report lacks the drawing, the state behind the rules, and the explanations.
#pragma once

#include <Report/Model.h>
#include <Story/FrameTable.h>
#include <Story/Observer.h>
#include <Story/Outcome.h>

namespace Report {

class Collector final : public Story::Observer {
 public:
   explicit Collector( Device device, Limits const & limits = {} );

   // The questions that are to be answered after each step.
   static std::vector< std::string > tables() {
      return { "ports", "segments", "vteps", "tcam", "rules" };
   }

   void onEvent( Story::Event const & event ) override;

   Model const & model() const { return model_; }

 private:
   void take( Story::RunBegins const & event );
   void take( Story::StepBegins const & event );
   void take( Story::StepEnds const & ) { endOfStep(); }
   void take( Story::ClockMoved const & ) {}
   void take( Story::RunEnds const & ) {}
   void take( Story::BadInput const & ) { endOfStep(); }
   void take( Story::Interrupted const & ) { endOfStep(); }
   void take( Story::Stopped const & event );
   void take( Story::StopExpected const & ) {}
   void take( Story::ExpectationChecked const & event );
   void take( Story::VariantChosen const & event );
   void take( Story::PublishedChange const & event );
   void take( Story::EntityDumped const & event );
   void take( Story::EntityShown const & ) {}
   void take( Story::TableShown const & event );
   void take( Story::FrameExplained const & event );
   void take( Story::CallMade const & event );
   void take( Story::RuleIs const & event );
   void take( Story::RuleGone const & event );
   void take( Story::RulesDumped const & event );
   void take( Story::FramesBegin const & ) {}
   void take( Story::FrameForwarded const & event );
   void take( Story::Audited const & event );
   // All other events are a line each.
   template< typename Other > void take( Other const & event ) {
      line( Other::kName, event.words() );
   }

   Step & step() { return model_.steps.back(); }
   U32 number() const { return outcome_.step() ? outcome_.step()->number : 0; }
   void line( std::string const & kind, std::string const & text );
   void endOfStep();
   void ending();

   Model model_;
   Story::Outcome outcome_;
   Story::FrameTable frameTable_;
};

}  // namespace Report
