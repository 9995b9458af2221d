#include <StateDatabase/SharedEntities.h>

namespace StateDatabase {

Quelm::Ptr< Kiv::Entity > SharedEntities::entity( std::string const & name ) {
   auto found = directory_.entity( kFolder + name );
   observer_.onEvent(
      Story::SharedEntityAsked{ name, found ? found->typeData().name() : std::string() } );
   return found;
}

}  // namespace StateDatabase
