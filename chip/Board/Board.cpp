#include <Board/Board.h>

#include <Quelm/Error.h>

namespace Chip {

namespace {

GroupKind kindOfGroup( U16 unit, Vornal::TcamGroupAssignment assignment ) {
   if ( assignment == Vornal::kIfpLocalBiasGroup ) {
      return GroupKind::Ingress;
   }
   if ( assignment == Vornal::kEfpLocalBiasGroup ) {
      return GroupKind::Egress;
   }
   throw Quelm::Error( "unit " + std::to_string( unit ) + ": there is no field-processor group " +
                       std::to_string( assignment ) + "; known are 157 (ingress) and 45 (egress)" );
}

void addUnit( Units & units, UnitConfig const & config, LookupEngine lookup ) {
   if ( units.unit( config.number ) ) {
      throw Quelm::Error( "unit " + std::to_string( config.number ) +
                          " comes twice; unit numbers are unique on a board" );
   }
   Unit & unit = units.unitNew( config.number, config.modId );
   for ( auto const & [ assignment, capacity ] : config.capacities ) {
      unit.groupNew( assignment, kindOfGroup( config.number, assignment ), capacity, lookup );
   }
}

}  // namespace

Board::Board( BoardConfig const & config, CallObserver * observer, Faults * faults )
      : sdk_( units_ ) {
   for ( UnitConfig const & unit : config.units ) {
      addUnit( units_, unit, config.lookup );
   }
   groupManager_ = Quelm::make< SoftTcamGroupManager >( "tcamGroups", units_, observer, faults );
}

Quelm::Ptr< SoftTcamEntryManager > Board::entryManager( Vornal::TcamGroupAssignment group ) const {
   return Quelm::dynamicCast< SoftTcamEntryManager >( groupManager_->entryManager( group ) );
}

}  // namespace Chip
