#include <Tcam/SoftTcamGroupManager.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Chip::SoftTcamGroupManager )

namespace Chip {

SoftTcamGroupManager::SoftTcamGroupManager( std::string name, Units & units,
                                            CallObserver * observer, Faults * faults )
      : VornalTcamGroupManager( std::move( name ) ) {
   for ( auto const & [ number, unit ] : units ) {
      for ( auto const & [ assignment, group ] : unit.groups() ) {
         if ( !entryManagerHas( assignment ) ) {
            entryManagerIs(
               Quelm::make< SoftTcamEntryManager >( assignment, units, observer, faults ) );
         }
      }
   }
}

}  // namespace Chip
