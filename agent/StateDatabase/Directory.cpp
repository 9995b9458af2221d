#include <StateDatabase/Directory.h>

#include <Quelm/Error.h>

namespace StateDatabase {

namespace {

void checkPath( std::string const & path ) {
   if ( path.empty() || path.front() == '/' || path.back() == '/' ||
        path.find( "//" ) != std::string::npos ) {
      throw Quelm::AccessError( "'" + path + "' is not a path; one reads like 'evpn/status'" );
   }
}

Kiv::Type::Create const & creatorOf( std::string const & type ) {
   Kiv::Type const * const found = Kiv::typeNamed( type );
   if ( !found ) {
      throw Quelm::AccessError( "no loaded module has an entity type '" + type + "'" );
   }
   if ( !found->create() ) {
      throw Quelm::AccessError( "an entity of type '" + type + "' cannot be made from a name" );
   }
   return found->create();
}

}  // namespace

void Directory::entityIs( std::string const & path, Quelm::Ptr< Kiv::Entity > const & entity ) {
   checkPath( path );
   if ( !entities_.emplace( path, entity ).second ) {
      throw Quelm::AccessError( "there is an entity at '" + path + "' already" );
   }
}

Quelm::Ptr< Kiv::Entity > Directory::entityNew( std::string const & path,
                                                std::string const & type ) {
   auto entity = creatorOf( type )( path.substr( path.rfind( '/' ) + 1 ) );
   entityIs( path, entity );
   return entity;
}

void Directory::entityDel( std::string_view path ) {
   auto const found = entities_.find( path );
   if ( found != entities_.end() ) {
      entities_.erase( found );
   }
}

Quelm::Ptr< Kiv::Entity > Directory::entity( std::string_view path ) const {
   auto const found = entities_.find( path );
   return found == entities_.end() ? nullptr : found->second;
}

bool isOfType( Kiv::Entity const & entity, std::string_view type ) {
   Kiv::Type const * at = &entity.typeData();
   while ( at && at->name() != type ) {
      at = at->base();
   }
   return at != nullptr;
}

}  // namespace StateDatabase
