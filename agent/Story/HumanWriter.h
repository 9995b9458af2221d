// Tells people a run while it goes on: a line per step, its events indented below, and a verdict at
// the end.
//
// Below a step stand the plug-in's requests, traces, log lines and changes of the state database,
// the rules that the step added, changed and removed, the outcomes of its frames, and its
// expectations. The step's own line tells the changes of other agents.
#pragma once

#include <ostream>
#include <set>
#include <string>

#include <Story/FrameTable.h>
#include <Story/FrameTotals.h>
#include <Story/Outcome.h>
#include <Story/RuleTable.h>
#include <Story/Style.h>
#include <Story/VtepNames.h>
#include <Story/Wording.h>

namespace Story {

class HumanWriter final : public Observer {
 public:
   // The stream must outlive the writer.
   HumanWriter( std::ostream & out, Style style ) : out_( out ), style_( style ) {}

   void onEvent( Event const & event ) override;

 private:
   void tell( RunBegins const & event );
   void tell( StepBegins const & event );
   void tell( StepEnds const & event );
   void tell( RunEnds const & event );
   void tell( Stopped const & event );
   void tell( Interrupted const & event );
   void tell( Warning const & event );
   void tell( MountAsked const & event );
   void tell( MountsDone const & event );
   void tell( PublishedChange const & event );
   void tell( RuleIs const & event ) { rules_.onEvent( event ); }
   void tell( RuleGone const & event ) { rules_.onEvent( event ); }
   void tell( ExpectationChecked const & event );
   void tell( FrameForwarded const & event );
   void tell( EntityDumped const & event );
   void tell( RulesDumped const & event );
   void tell( Audited const & event );
   // All other events have one line, or none.
   template< typename Other > void tell( Other const & event ) {
      if constexpr ( requires { event.words(); } ) {
         detail( event.words() );
      }
   }

   void detail( std::string const & text ) { shown( Text::printable( text ) ); }
   void shown( std::string const & text );  // takes printable text, with its colours
   void endOfStep();
   void knownLimits();
   void ruleChanges();
   void ruleLine( std::string const & what, Chip::Rule const & rule );
   void frameTable();
   void publishedBefore();
   void verdict();
   void totals();

   std::ostream & out_;
   Style style_;
   Outcome outcome_;
   RuleTable rules_;
   VtepNames names_;
   FrameTable frames_;  // of this step
   FrameTotals totals_;
   std::size_t changesBefore_ = 0;     // before the first step
   std::size_t held_ = 0;              // expectations of this step
   bool isAnyFailed_ = false;          // in this step
   std::set< std::string > writable_;  // paths that the plug-in mounts to write
};

}  // namespace Story
