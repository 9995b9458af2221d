#include <Host/Verification.h>

#include <Audit/Records.h>

namespace Host {

void tellAudit( Audit::Auditor const & auditor, Story::Observer & observer ) {
   Audit::Report const report = auditor.report();
   observer.onEvent( Story::Audited{ report.rules, report.entries, report.differences } );
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
   observer.onEvent( Story::PluginPass{ State::Begins } );
   pass->call( *machine, {} );
   observer.onEvent( Story::PluginPass{ State::Held } );
}

}  // namespace Host
