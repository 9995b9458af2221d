#include <Steps/Verify.h>

#include <Audit/Audit.h>
#include <Audit/Records.h>
#include <Quelm/Text.h>
#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

Scenario::Choices< Verify::How > const & verifications() {
   using How = Verify::How;
   static Scenario::Choices< How > const choices{
      { "verify", "The verification of the rules at this point." },
      { { "audit", How::audit }, { "plug-in", How::plugIn }, { "both", How::both } }
   };
   return choices;
}

// The machine has the attribute, with this value.
bool hasValue( Kiv::Entity const & machine, char const * name, bool value ) {
   auto const * const attribute = machine.typeData().find( name );
   return attribute && attribute->text( machine, {} ) == Quelm::textOf( value );
}

// Why the pass would compare nothing; empty when it would compare the rules.
std::string whySkipped( Kiv::Entity const & machine ) {
   if ( hasValue( machine, "initialized", false ) ) {
      return "the state machine is not initialized";
   }
   return hasValue( machine, "tcamExhaustion", true )
             ? "a TCAM group counts as full, so the pass compares nothing"
             : "";
}

// Audits the rules and tells the result.
void tellAudit( Audit::Auditor const & auditor, Story::Observer & observer ) {
   Audit::Report const report = auditor.report();
   Story::Audited audited{ report.rules, report.entries, report.differences };
   for ( auto const & [ vtep, reason ] : report.unprotected ) {
      audited.unprotected.push_back( vtep.stringValue() );
   }
   observer.onEvent( audited );
}

// Runs the pass of the plug-in's state machine, handleVerify, which stops the process at the first
// difference. Tells its beginning, and whether it has passed or has compared nothing.
void runPluginPass( StateDatabase::Finder const & finder, Story::Observer & observer ) {
   using State = Story::PluginPass::State;
   auto const machine = Audit::machineIn( finder.roots() );
   auto const * const pass =
      machine ? machine->typeData().findOperation( "handleVerify", 0 ) : nullptr;
   if ( !pass ) {
      observer.onEvent( Story::PluginPass{ State::Absent } );
      return;
   }
   std::string const whyNot = whySkipped( *machine );
   observer.onEvent( Story::PluginPass{ State::Begins } );
   pass->call( *machine, {} );
   observer.onEvent( whyNot.empty() ? Story::PluginPass{ State::Held }
                                    : Story::PluginPass{ State::Skipped, whyNot } );
}

}  // namespace

std::vector< WordList > Verify::vocabulary() {
   return { verifications().list() };
}

void Verify::read( Reading & reading, Value const & value ) {
   how = choiceOf( reading, value, verifications() ).value_or( How::both );
}

std::string Verify::description() const {
   switch ( how ) {
   case How::audit: return "verify by the audit";
   case How::plugIn: return "verify by the plug-in's own pass";
   case How::both: return "verify by the audit and the plug-in's own pass";
   }
   return {};
}

void Verify::queue( Context const & context, int line ) const {
   queueVerification( context, how, line );
}

void queueVerification( Context const & context, Verify::How how, int line ) {
   if ( how != Verify::How::plugIn ) {
      context.turnNew( line,
                       [ &context ] { tellAudit( context.evidence.auditor, context.observer ); } );
   }
   if ( how != Verify::How::audit ) {
      context.turnNew( line, [ &context ] {
         runPluginPass( context.evidence.finder, context.observer );
      } );
   }
}

}  // namespace Steps
