// StateDatabase::Directory: entities by the path they are at.
//
// A path is made of names with '/' between them and none in front: "evpn/status". The directory
// keeps its entities alive, and hands them out in the order of their paths.
//
// Failures: Quelm::AccessError, which leaves the directory as it was.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include <Kiv/Entity.h>

namespace StateDatabase {

class Directory {
 public:
   using Entities = std::map< std::string, Quelm::Ptr< Kiv::Entity >, std::less<> >;

   // Puts an entity at a path where there is none.
   void entityIs( std::string const & path, Quelm::Ptr< Kiv::Entity > const & entity );
   // Creates an entity of that type at a path where there is none. The entity's name is the last
   // one of the path.
   Quelm::Ptr< Kiv::Entity > entityNew( std::string const & path, std::string const & type );
   void entityDel( std::string_view path );

   // The entity at `path`, or an empty reference.
   Quelm::Ptr< Kiv::Entity > entity( std::string_view path ) const;
   Entities const & entities() const { return entities_; }

 private:
   Entities entities_;
};

// Whether the entity is of the named type, or of one derived from it.
bool isOfType( Kiv::Entity const & entity, std::string_view type );

}  // namespace StateDatabase
