#include <Story/Node.h>

#include <Text/Printable.h>

namespace Story {

namespace {

constexpr std::size_t kIndent = 3;

void write( Node const & node, std::size_t indent, std::string & text ) {
   text += std::string( indent, ' ' ) + Text::printable( node.text ) + '\n';
   for ( Node const & child : node.children ) {
      write( child, indent + kIndent, text );
   }
}

}  // namespace

Node & Node::add( Node child ) {
   children.push_back( std::move( child ) );
   return children.back();
}

std::string treeText( Node const & node ) {
   std::string text;
   write( node, 0, text );
   return text;
}

}  // namespace Story
