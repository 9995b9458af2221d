// Finds the entity or the attribute at a path through the generic interface.
//
// A path begins with the longest place in one of the directories that fits, and goes on with
// attributes that lead to further entities (StateDatabase/EntityPath.h).
//
// Failures: Quelm::AccessError names the path, tells how far it leads and lists the choices there.
#pragma once

#include <string>
#include <vector>

#include <Kiv/Entity.h>
#include <StateDatabase/Directory.h>
#include <StateDatabase/EntityPath.h>

namespace StateDatabase {

class Finder {
 public:
   // The directories must outlive the finder.
   explicit Finder( std::vector< Directory const * > directories )
         : directories_( std::move( directories ) ) {}

   Quelm::Ptr< Kiv::Entity > entity( EntityPath const & path ) const;

   // The entities at which a path can begin, with their paths.
   Directory::Entities roots() const;

 private:
   struct Root {
      Quelm::Ptr< Kiv::Entity > entity;
      std::size_t segments = 0;  // the number of the path's segments that it takes
   };

   std::string hintOf( EntityPath const & path ) const;
   Root rootOf( EntityPath const & path ) const;

   std::vector< Directory const * > directories_;
};

// The attribute of that name. The AccessError for an unknown name lists the attributes.
Kiv::Attribute const & attributeOf( Kiv::Entity const & entity, std::string const & name );

}  // namespace StateDatabase
