// Events of the published state.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include <Story/EntityTree.h>
#include <Story/Fields.h>
#include <Story/Node.h>
#include <Story/Table.h>

namespace Story {

class Document;

// One change of the published state; told before its watchers act on it.
struct PublishedChange {
   static constexpr char const * kName = "publishedChange";
   std::string path;  // of the entity, "/evpn/status/segmentStatus[Port-Channel2]"
   std::string attribute;
   std::string key;                    // empty for an attribute without keys
   std::optional< std::string > from;  // nothing: the value is new
   std::optional< std::string > to;    // nothing: the value was removed

   static void fields( auto & event, auto && field ) {
      field( "path", event.path );
      field( "attribute", event.attribute );
      field( "key", event.key, kOrNull );
      field( "from", event.from );
      field( "to", event.to );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

// An entity that a step dumps.
struct EntityDumped {
   static constexpr char const * kName = "entityDumped";
   std::string path;
   EntityTree tree;

   static void fields( auto & event, auto && field ) {
      field( "path", event.path );
      field( "entity", event.tree );
   }
   void addTo( Document & document ) const;
};

// An entity for the command `show`.
struct EntityShown {
   static constexpr char const * kName = "entityShown";
   std::string path;
   EntityTree tree;

   static void fields( auto & event, auto && field ) {
      field( "path", event.path );
      field( "entity", event.tree );
   }
};

// The answer to a question about the switch.
struct TableShown {
   static constexpr char const * kName = "tableShown";
   Table table;

   static void fields( auto & event, auto && field ) { field( "table", event.table ); }
};

// The explanation of a frame.
struct FrameExplained {
   static constexpr char const * kName = "frameExplained";
   Node frame;

   static void fields( auto & event, auto && field ) { field( "frame", event.frame ); }
};

using StateEvents =
   std::variant< PublishedChange, EntityDumped, EntityShown, TableShown, FrameExplained >;

}  // namespace Story
