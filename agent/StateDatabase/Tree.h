// An entity, and what belongs to it, as a tree of texts.
//
// Attributes come in the order of the introspection table, members in that of their keys;
// operations are left out. What an attribute refers to is shown in place, except an entity that has
// a path of its own, and one that the same tree shows already: of these it says where. So a tree
// ends, also where entities refer to each other.
#pragma once

#include <StateDatabase/Directory.h>
#include <Story/EntityTree.h>

namespace StateDatabase {

// The tree of `entity`, which is at `path`; `published` are the entities that have paths of their
// own.
Story::EntityTree treeOf( std::string const & path, Kiv::Entity const & entity,
                          Directory::Entities const & published );

}  // namespace StateDatabase
