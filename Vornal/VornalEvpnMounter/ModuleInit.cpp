// Module initialisation: runs when the agent opens the plug-in.
//
// The types register first, in the files that define them (Kiv/Registration.h). Then the objects
// below register themselves, in this order: trace handles, log message descriptors, the mounter.
// Closing the plug-in takes all of it back but the levels of the trace ring.
//
// Few lines of the state machines are marked for the trace ring, and each is wanted there, whatever
// its level: opening the plug-in lets the ring take every level of their handle. An agent that
// wants fewer says so after each opening.

#include <Plugin/Mounter.h>
#include <VornalEvpnMounter/ModuleTrace.h>
#include <VornalEvpnMounter/VornalEvpnMounter.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

Trace::Handle const mounterTrace( "VornalEvpnMounter" );
Trace::Handle const smTrace( "VornalEvpnSm" );

Log::Handle const multihomingTcamResourceRecovered( {
   .name = "MULTIHOMING_TCAM_RESOURCE_RECOVERED",
   .format = "TCAM resource for EVPN Multi-Homing recovered",
   .explanation = "TCAM is no longer full and new entries can be allocated",
   .action = Log::StandardAction::NoneRequired,
   .severity = Log::Severity::Notice,
} );

Log::Handle const multihomingTcamResourceFull( {
   .name = "MULTIHOMING_TCAM_RESOURCE_FULL",
   .format = "TCAM resource for EVPN Multi-Homing exhausted",
   .explanation = "TCAM is full and allocation of new entry has failed.",
   .action = "Remove unused ACLs to free up TCAM usage and/or reconfigure EVPN usage to reduce "
             "number of interfaces and VLANs used",
   .severity = Log::Severity::Error,
} );

namespace {

class OpenToTheRing {
 public:
   explicit OpenToTheRing( Trace::Handle const & handle ) {
      Trace::ringLevelsIs( handle.name(), "0-9" );
   }
};
OpenToTheRing const smTraceIsOpen( smTrace );

// Known to the switch log as long as the plug-in is loaded; the agent emits them.
Log::Handle const unexpectedRestart( {
   .name = "VORNAL_UNEXPECTED_RESTART",
   .format = "Unexpected restart of Vornal agent %s occurred",
   .explanation = "Unexpected restart of the Vornal agent occurred.",
   .action = Log::StandardAction::ContactSupport,
   .severity = Log::Severity::Error,
} );

Log::Handle const configChange( {
   .name = "VORNAL_CONFIG_CHANGE",
   .format = "Configuration change requires the Vornal agent %s to restart",
   .explanation = "Configuration change requires the switch ASIC to be reconfigured, requiring the "
                  "Vornal agent to restart.",
   .action = Log::StandardAction::NoneRequired,
   .severity = Log::Severity::Informational,
} );

Plugin::MounterRegistration const mounter(
   "Vornal::VornalEvpnMounter", []( std::string const & name ) -> Quelm::Ptr< Plugin::Mounter > {
      return Quelm::make< VornalEvpnMounter >( name );
   } );

}  // namespace

}  // namespace Vornal
