// From the path of an entity, or of an attribute, to the thing itself, by the generic interface.
//
// A path begins with the place of an entity in one of the directories, the longest that fits, and
// goes on with attributes that lead to further entities (StateDatabase/EntityPath.h).
//
// Failures: Quelm::AccessError, which names the path, and says how far it leads and what is there.
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
      std::size_t segments = 0;  // how many of the path's it takes
   };

   std::string hintOf( EntityPath const & path ) const;
   Root rootOf( EntityPath const & path ) const;

   std::vector< Directory const * > directories_;
};

// The attribute of that name; AccessError naming those that there are.
Kiv::Attribute const & attributeOf( Kiv::Entity const & entity, std::string const & name );

}  // namespace StateDatabase
