// StateDatabase::Directory: entities by path.
//
// A path consists of names with '/' between them and none in front: "evpn/status". The directory
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

   // Puts an entity at a free path.
   void entityIs( std::string const & path, Quelm::Ptr< Kiv::Entity > const & entity );
   // Creates an entity of that type at a free path. The last name of the path becomes its name.
   Quelm::Ptr< Kiv::Entity > entityNew( std::string const & path, std::string const & type );
   void entityDel( std::string_view path );

   // The entity at `path`, or an empty reference.
   Quelm::Ptr< Kiv::Entity > entity( std::string_view path ) const;
   Entities const & entities() const { return entities_; }

 private:
   Entities entities_;
};

// The entity's type is the named one, or derived from it.
bool isOfType( Kiv::Entity const & entity, std::string_view type );

}  // namespace StateDatabase
