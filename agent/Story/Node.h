// A node of an explanation: one statement for people, its values for programs, and the statements
// that it rests on.
//
// A node's kind ("ingress-rule") says which values it has; docs/program.md lists the kinds. Texts
// and values are final: what shows a tree adds nothing to it.
#pragma once

#include <string>
#include <vector>

#include <Story/Table.h>

namespace Story {

struct NamedCell {
   std::string name;
   Cell cell;

   static void fields( auto & value, auto && field ) {
      field( "name", value.name );
      field( "cell", value.cell );
   }

   friend bool operator==( NamedCell const &, NamedCell const & ) = default;
};

struct Node {
   std::string kind;
   std::string text;
   std::vector< NamedCell > values{};
   std::vector< Node > children{};

   // Adds the child and returns it; it stays valid until the next one is added.
   Node & add( Node child );

   static void fields( auto & node, auto && field ) {
      field( "kind", node.kind );
      field( "text", node.text );
      field( "values", node.values );
      field( "children", node.children );
   }

   friend bool operator==( Node const &, Node const & ) = default;
};

// The node and all below it, a line each, indented by depth.
std::string treeText( Node const & node );

}  // namespace Story
