#include <Host/Environment.h>

#include <Reporters/TcamGroupManager.h>
#include <StateDatabase/SharedEntities.h>

namespace Host {

namespace {

Chip::BoardConfig boardOf( Scenario::Switch const & device ) {
   Chip::BoardConfig config;
   for ( Scenario::SwitchUnit const & unit : device.units ) {
      Chip::UnitConfig chip{ unit.number, unit.module, {} };
      if ( device.tcam.ingress ) {
         chip.capacities[ Vornal::kIfpLocalBiasGroup ] = *device.tcam.ingress;
      }
      if ( device.tcam.egress ) {
         chip.capacities[ Vornal::kEfpLocalBiasGroup ] = *device.tcam.egress;
      }
      config.units.push_back( std::move( chip ) );
   }
   return config;
}

}  // namespace

Environment::Environment( Scenario::Model const & scenario, std::span< std::byte > ring,
                          Story::Observer & observer )
      : observers_( { &record_, &chronicle_, &observer } ),
        observer_( *activity_.clock(), observers_ ),
        reporter_( observer_ ),
        board_( boardOf( scenario.device ), &reporter_, &faults_ ),
        failing_( board_.sdk(), faults_ ),
        sdk_( failing_, reporter_ ),
        ring_( ring ),
        toggles_( scenario.featureFiles ),
        processWide_( sdk_, ring_, toggles_, observer_ ),
        published_( scenario.device, activity_, database_, agentEntities_ ),
        finder_( { &database_, &agentEntities_ } ),
        traffic_( { scenario, published_, board_.units(), activity_, observer_ } ),
        auditor_( finder_, board_.units() ),
        evidence_{ finder_, board_.units(), record_, *pluginPoint(), auditor_ },
        forSteps_{ scenario.sources, activity_, published_, traffic_, board_,
                   faults_,          reporter_, evidence_,  observer_ },
        subAgentWatch_( published_.common()->sliceDependencyPoints()->subAgentDependencyPoints(),
                        [ this ]( Kiv::Change const & change ) {
                           if ( change.newValue< bool >() ) {
                              observer_.onEvent( Story::DependencyPointReady{
                                 "subagents::" + change.key< std::string >(), false } );
                           }
                        } ) {
   reporter_.unitsIs( board_.units() );
   agentEntities_.entityIs( std::string( StateDatabase::SharedEntities::kFolder ) + "tcamManager",
                            Quelm::make< Reporters::TcamGroupManager >( "tcamManager",
                                                                        *board_.groupManager(),
                                                                        observer_ ) );
   watch();
}

// Subscribes before any plug-in, so that the observer hears of a change before a plug-in acts on
// it.
void Environment::watch() {
   subAgentWatch_.hasNotificationActiveIs( true );
   for ( auto const & [ path, entity ] : finder_.roots() ) {
      watches_.push_back(
         std::make_unique< StateDatabase::ChangeWatch >( "/" + path, entity, observer_ ) );
   }
}

}  // namespace Host
