// Tells programs a run: one JSON document, written when the run is over.
//
//    scenario      its name; `file` is where it was read from
//    variant       "egress-mask", "class-id"; null before the plug-in has chosen
//    end           "completed", "expectation-failed", "failed", "stopped", "interrupted"
//    assertion     file, line, function, expression; null unless one stopped the process
//    step          the step in which the run ended before its end; null when it did not
//    stop          reason, and its last lines (`output`, `traces`); null when it did not
//    error         the mistake in the input, when the run failed; else null
//    warnings      probable mistakes, with the step in which they showed
//    plugin        its requests to the agent: file, mounters, mounts, lookups, sharedEntities,
//                  tcamGroups, and whether it is ready
//    steps         from 0, which is start-up; the last one is teardown
//    rules         in the chips at the end, by unit, group and id
//    frames        in the order in which they came in
//    log           with the step of each line
//    counters
//
// A run can have very many frames. They wait on disk (Spool.h) until the document is written; all
// the rest is held in memory. When the disk has no room for them, onEvent() or write() throws
// InputError, and nothing of the document is written; only a disk that fails to give them back
// leaves a part of it. Of a step alone, no frame waits.
//
// docs/program.md describes every name. Names are stable: new ones may be added, none disappears
// and none changes its meaning. Numbers are numbers, an absent value is null, an empty list is
// present.
#pragma once

#include <optional>
#include <ostream>

#include <Story/Document.h>
#include <Story/FrameTotals.h>
#include <Story/Outcome.h>
#include <Story/RuleTable.h>

namespace Story {

class JsonWriter final : public Observer {
 public:
   // A step can have changes, calls, traces and log lines without end. The document holds this many
   // of each and counts the rest, so an endless turn cannot fill the memory.
   static constexpr std::size_t kMostEntries = 100'000;

   // With a `step`, the document is the object of that step alone, as it stands in the whole one;
   // null when it has not begun.
   explicit JsonWriter( std::optional< U32 > step = {}, std::size_t mostEntries = kMostEntries );

   void onEvent( Event const & event ) override;

   // Writes the present document.
   void write( std::ostream & out ) const;

 private:
   void take( StepEnds const & ) { ruleChanges(); }
   void take( BadInput const & event );
   void take( Stopped const & event );
   void take( Interrupted const & ) { endsEarly(); }
   void take( RuleIs const & event ) { rules_.onEvent( event ); }
   void take( RuleGone const & event ) { rules_.onEvent( event ); }
   void take( FrameForwarded const & event );
   // All other events have their place in the document, or none.
   template< typename Other > void take( Other const & event ) {
      if constexpr ( requires { event.addTo( document_ ); } ) {
         event.addTo( document_ );
      }
   }

   void writeWhole( std::ostream & out ) const;
   void writeStep( std::ostream & out ) const;
   // The document's text, with the frames in their list.
   void writeWithFrames( std::string_view text, std::ostream & out ) const;
   void ruleChanges();
   void endsEarly();

   std::optional< U32 > step_;
   Document document_;
   Outcome outcome_;
   RuleTable rules_;
   FrameTotals totals_;
};

}  // namespace Story
