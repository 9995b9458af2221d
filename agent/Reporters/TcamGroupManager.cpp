#include <Reporters/TcamGroupManager.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Reporters::TcamGroupManager )

namespace Reporters {

TcamGroupManager::TcamGroupManager( std::string name, Vornal::VornalTcamGroupManager const & chip,
                                    Story::Observer & observer )
      : VornalTcamGroupManager( std::move( name ) ), observer_( observer ) {
   for ( auto iter = chip.entryManagerIter(); iter; ++iter ) {
      entryManagerIs( iter.value() );
   }
}

Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > TcamGroupManager::unboundedEntryManager(
   Vornal::TcamGroupAssignment assignment ) {
   observer_.onEvent( Story::TcamGroupAsked{ assignment, entryManagerHas( assignment ) } );
   return entryManager( assignment );
}

}  // namespace Reporters
