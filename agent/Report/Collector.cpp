#include <Report/Collector.h>

#include <algorithm>

#include <Snapshot/RuleText.h>
#include <Story/AuditText.h>
#include <Story/EntityText.h>

namespace Report {

Collector::Collector( Device device, Limits const & limits ) : model_( limits ) {
   model_.device = std::move( device );
   model_.steps.emplace_back();
}

void Collector::onEvent( Story::Event const & event ) {
   outcome_.onEvent( event );
   std::visit( [ this ]( auto const & what ) { take( what ); }, event );
   ending();
}

void Collector::ending() {
   model_.ending.name = outcome_.endName();
   model_.ending.expectations = outcome_.expectations();
   model_.ending.failedExpectations = outcome_.failedExpectations();
   model_.ending.error = outcome_.badInput();
   model_.ending.interrupted = outcome_.interrupted() ? outcome_.interrupted()->reason : "";
}

// --- The progress of the run

void Collector::take( Story::RunBegins const & event ) {
   model_.title = event.title;
   model_.file = event.scenario;
   model_.description = event.description;
}

void Collector::take( Story::StepBegins const & event ) {
   Step next;
   next.begins = event;
   next.tables = step().tables;
   model_.steps.push_back( std::move( next ) );
}

void Collector::take( Story::Stopped const & event ) {
   endOfStep();
   model_.ending.stopped = event;
   model_.ending.limits = outcome_.limits();
}

void Collector::endOfStep() {
   step().rules = model_.rules.changes( number(), model_.texts );
   if ( !frameTable_.isEmpty() ) {
      step().frameTable = frameTable_.lines();
      frameTable_.clear();
   }
}

// --- Lines

void Collector::line( std::string const & kind, std::string const & text ) {
   if ( step().lines.size() == model_.limits.lines ) {
      ++step().linesLeftOut;
      return;
   }
   step().lines.push_back( { model_.texts.idOf( kind ), model_.texts.idOf( text ) } );
}

void Collector::take( Story::ExpectationChecked const & event ) {
   line( event.held ? "held" : "failed", event.held ? event.text : event.words() );
}

void Collector::take( Story::VariantChosen const & event ) {
   model_.variant = event.variant;
   line( Story::VariantChosen::kName, event.words() );
}

void Collector::take( Story::EntityDumped const & event ) {
   std::string const tree = Story::treeText( event.path, event.tree );
   for ( std::size_t begin = 0; begin < tree.size(); ) {
      std::size_t const end = std::min( tree.find( '\n', begin ), tree.size() );
      line( Story::EntityDumped::kName, tree.substr( begin, end - begin ) );
      begin = end + 1;
   }
}

void Collector::take( Story::RulesDumped const & event ) {
   for ( Chip::Rule const & rule : event.rules ) {
      line( Story::RulesDumped::kName, Chip::headingText( rule ) + ": " + Chip::bodyText( rule ) );
   }
   if ( event.rules.empty() ) {
      line( Story::RulesDumped::kName, "there are no rules" );
   }
}

void Collector::take( Story::Audited const & event ) {
   for ( std::string const & text : Story::linesOf( event, Story::Style( false ) ) ) {
      line( Story::Audited::kName, text );
   }
}

// --- State

void Collector::take( Story::PublishedChange const & event ) {
   model_.rules.onEvent( event );
   if ( step().changes.size() == model_.limits.lines ) {
      ++step().changesLeftOut;
      return;
   }
   Texts & texts = model_.texts;
   auto const perhaps = [ & ]( std::optional< std::string > const & text ) {
      return text ? std::optional( texts.idOf( *text ) ) : std::nullopt;
   };
   step().changes.push_back(
      { .path = texts.idOf( event.path ),
        .attribute = texts.idOf( event.attribute ),
        .key = event.key.empty() ? std::nullopt : std::optional( texts.idOf( event.key ) ),
        .from = perhaps( event.from ),
        .to = perhaps( event.to ) } );
}

void Collector::take( Story::TableShown const & event ) {
   Story::Table const & table = event.table;
   if ( table.name == "rules" ) {
      model_.rules.onEvent( table, number(), model_.texts );
      return;
   }
   auto & answers = model_.tables[ table.name ];
   if ( answers.empty() || answers.back() != table ) {
      answers.push_back( table );
   }
   step().tables[ table.name ] = answers.size() - 1;
}

// --- The chip

void Collector::take( Story::CallMade const & event ) {
   ++step().calls;
   step().failedCalls += event.call.returnCode.value_or( 0 ) < 0 ? 1U : 0U;
}

void Collector::take( Story::RuleIs const & event ) {
   model_.rules.onEvent( event, number() );
}

void Collector::take( Story::RuleGone const & event ) {
   model_.rules.onEvent( event, number(), model_.texts );
}

void Collector::take( Story::FrameExplained const & event ) {
   if ( !model_.frames.isFull() ) {
      model_.frames.explanationIs( model_.explanations.add( event.frame, model_.rules,
                                                            model_.texts ),
                                   arrivesTwice( event.frame ) );
   }
}

void Collector::take( Story::FrameForwarded const & event ) {
   ++step().frames;
   frameTable_.add( event.frame );
   model_.totals.add( event.frame );
   model_.frames.add( event.frame, number(), model_.rules, model_.texts );
}

}  // namespace Report
