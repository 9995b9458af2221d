// Carries out the steps of a scenario.
//
// A step becomes turns of the activity: one for every change that another agent writes, in the
// order written, never merged, and one for the expectations. Nothing happens here but queueing;
// whoever runs the activity until it is idle has carried the step out.
//
// Failures: a turn that names something that is not there, or that the generic interface refuses,
// throws InputError with the place in the scenario; the turns behind it stay queued.
#pragma once

#include <functional>

#include <Board/Board.h>
#include <Host/Expectations.h>
#include <Kiv/Activity.h>
#include <Peers/PublishedState.h>
#include <Reporters/ChipReporter.h>
#include <Story/Observer.h>
#include <Traffic/Injector.h>

namespace Host {

// What steps work on. Everything must outlive its use, turns included.
struct StepContext {
   std::string const & file;  // of the scenario
   Kiv::ActivityManager & activity;
   Peers::PublishedState & published;
   Traffic::Injector & traffic;
   Chip::Board & board;
   Chip::Faults & faults;
   Reporters::ChipReporter & reporter;
   Evidence const & evidence;
   Story::Observer & observer;
};

class Steps {
 public:
   explicit Steps( StepContext const & context ) : context_( context ) {}

   void queue( Scenario::Step const & step );
   // One turn for each change.
   void queuePublished( std::vector< Scenario::Change > const & changes );
   // An audit, and the plug-in's own pass after it: what that stops cannot be audited any more.
   void queueVerification( Scenario::Verify how, int line = 0 );

 private:
   void queueAction( Scenario::Note const &, int ) {}
   void queueAction( Scenario::Ready const & ready, int line );
   void queueAction( Scenario::Publish const & publish, int line );
   void queueAction( Scenario::Withdraw const & withdraw, int line );
   void queueAction( Scenario::Set const & action, int line );
   void queueAction( Scenario::Delete const & action, int line );
   void queueAction( Scenario::Call const & action, int line );
   void queueAction( Scenario::Replace const & replace, int line );
   void queueAction( Scenario::Turn const & turn, int line );
   void queueAction( Scenario::ForeignEntries const & action, int line );
   void queueAction( Scenario::ClassIdAllocator const & action, int line );
   void queueAction( Scenario::Dump const & action, int line );
   void queueAction( Scenario::Frame const & action, int line );
   void queueAction( Scenario::Capture const & action, int line );
   void queueAction( Scenario::DesignatedForwarder const & action, int line );
   void queueAction( Scenario::Drift const & action, int line );
   void queueAction( Scenario::FailCall const & action, int line );
   void queueAction( Scenario::Verify how, int line ) { queueVerification( how, line ); }
   void queueAction( Scenario::Expect const & action, int line );

   // What a step changes, within one turn.
   void change( Scenario::Ready const & ready );
   void change( Scenario::Publish const & publish );
   void change( Scenario::Withdraw const & withdraw );
   void change( Scenario::Replace const & replace );
   void change( Scenario::Set const & action ) { set( action ); }
   void change( Scenario::Delete const & action ) { remove( action ); }
   void change( Scenario::Call const & action ) { call( action ); }

   void set( Scenario::Set const & action );
   void remove( Scenario::Delete const & action );
   void call( Scenario::Call const & action );
   void occupy( Scenario::ForeignEntries const & action );
   void dump( StateDatabase::EntityPath const & path );
   void dump( Scenario::Dump::Rules );
   void expect( Scenario::Expectation const & expectation );

   // Work whose refusals become InputErrors at that line; and a turn of such work.
   template< typename Work > void at( int line, Work const & work ) const;
   void turnNew( int line, std::function< void() > turn );
   std::string placeOf( int line ) const;

   StepContext context_;
};

}  // namespace Host
