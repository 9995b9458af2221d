#include <Host/SharedState.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Host::TcamGroupManager )

namespace Host {

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

Quelm::Ptr< Kiv::Entity > SharedEntities::entity( std::string const & name ) {
   auto found = directory_.entity( kFolder + name );
   observer_.onEvent(
      Story::SharedEntityAsked{ name, found ? found->typeData().name() : std::string() } );
   return found;
}

}  // namespace Host
