// An entity and its parts as text, read through the generic interface.
#pragma once

#include <string>
#include <vector>

#include <Kiv/Attribute.h>

namespace Story {

struct EntityAttribute;

struct EntityTree {
   std::string type;
   std::string identity;  // its key or its name; empty without either
   // The entity's other path, which shows it instead: it is published there, or stands there in the
   // same tree. Then there are no attributes here. Empty when the entity is shown here.
   std::string shownAt;
   std::vector< EntityAttribute > attributes;

   static void fields( auto & tree, auto && field ) {
      field( "type", tree.type );
      field( "identity", tree.identity );
      field( "shownAt", tree.shownAt );
      field( "attributes", tree.attributes );
   }
};

// One value of an attribute, one member of a collection, or one entity that a reference leads to.
struct EntityItem {
   std::string key;                   // empty without keys
   std::string text;                  // empty for a member of a set, and for an entity
   std::vector< EntityTree > entity;  // at most one

   static void fields( auto & item, auto && field ) {
      field( "key", item.key );
      field( "text", item.text );
      field( "entity", item.entity );
   }
};

struct EntityAttribute {
   std::string name;
   Kiv::Attribute::Kind kind = Kiv::Attribute::Kind::Value;
   std::vector< EntityItem > items;  // one, unless the attribute has keys

   static void fields( auto & attribute, auto && field ) {
      field( "name", attribute.name );
      field( "kind", attribute.kind );
      field( "items", attribute.items );
   }

   bool isSet() const { return kind == Kiv::Attribute::Kind::Set; }
   bool isKeyed() const {
      return isSet() || kind == Kiv::Attribute::Kind::Collection ||
             kind == Kiv::Attribute::Kind::Members;
   }
   bool leadsToEntities() const {
      return kind == Kiv::Attribute::Kind::Reference || kind == Kiv::Attribute::Kind::Members;
   }
};

}  // namespace Story
