// Turns an entity and its parts into a tree of texts.
//
// Attributes come in the order of the introspection table, members in the order of their keys;
// operations are left out. A referred entity is shown in place. If it has a path of its own, or
// stands in the same tree already, the tree shows only its path. So a tree ends even where entities
// refer to each other.
#pragma once

#include <StateDatabase/Directory.h>
#include <Story/EntityTree.h>

namespace StateDatabase {

// The tree of `entity`, whose path is `path`; `published` lists the entities that have paths of
// their own.
Story::EntityTree treeOf( std::string const & path, Kiv::Entity const & entity,
                          Directory::Entities const & published );

}  // namespace StateDatabase
