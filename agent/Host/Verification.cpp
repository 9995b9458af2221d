#include <Host/Verification.h>

#include <Audit/Records.h>
#include <Quelm/Text.h>

namespace Host {

namespace {

// Whether the attribute is there and has this value.
bool is( Kiv::Entity const & machine, char const * name, bool value ) {
   auto const * const attribute = machine.typeData().find( name );
   return attribute && attribute->text( machine, {} ) == Quelm::textOf( value );
}

// Why the pass would compare nothing; empty when it would.
std::string whySkipped( Kiv::Entity const & machine ) {
   if ( is( machine, "initialized", false ) ) {
      return "the state machine is not initialized";
   }
   return is( machine, "tcamExhaustion", true )
             ? "a TCAM group counts as full, and nothing is compared while one does"
             : "";
}

}  // namespace

void tellAudit( Audit::Auditor const & auditor, Story::Observer & observer ) {
   Audit::Report const report = auditor.report();
   Story::Audited audited{ report.rules, report.entries, report.differences };
   for ( Pelk::IpGenAddr const & vtep : report.unprotected ) {
      audited.unprotected.push_back( vtep.stringValue() );
   }
   observer.onEvent( audited );
}

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

}  // namespace Host
