#include <StateDatabase/EntityPath.h>

namespace StateDatabase {

namespace {

bool isSegmentCharacter( char c ) {
   return c != '/' && Quelm::isNameCharacter( c );
}

// Reads a key without the brackets around it. A bracket within double quotes does not end it; a
// backslash there escapes the next character.
std::string readKey( Quelm::TextReader & in ) {
   std::string key;
   bool isQuoted = false;
   while ( isQuoted || in.peek() != ']' ) {
      if ( in.atEnd() ) {
         in.fail( isQuoted ? "a closing '\"'" : "a closing ']'" );
      }
      bool const isEscape = isQuoted && in.peek() == '\\';
      isQuoted = isQuoted != ( in.peek() == '"' );
      std::size_t const length = isEscape && in.rest().size() > 1 ? 2 : 1;
      key += in.rest().substr( 0, length );
      in.skip( length );
   }
   if ( key.empty() ) {
      in.fail( "a key" );
   }
   return key;
}

EntityPath::Segment readSegment( Quelm::TextReader & in ) {
   EntityPath::Segment segment;
   segment.name = in.takeWhile( isSegmentCharacter );
   if ( segment.name.empty() ) {
      in.fail( "a name" );
   }
   if ( in.accept( "[" ) ) {
      segment.key = readKey( in );
      in.expect( "]" );
   }
   return segment;
}

}  // namespace

EntityPath EntityPath::fromString( std::string_view text ) {
   return Quelm::fromText< EntityPath >( text );
}

void EntityPath::textTo( std::string & out ) const {
   for ( Segment const & segment : segments_ ) {
      out += '/' + segment.name;
      if ( segment.key ) {
         out += '[' + *segment.key + ']';
      }
   }
}

EntityPath EntityPath::textFrom( Quelm::TextReader & in ) {
   std::vector< Segment > segments;
   in.expect( "/" );
   do {
      segments.push_back( readSegment( in ) );
   } while ( in.accept( "/" ) );
   return EntityPath( std::move( segments ) );
}

}  // namespace StateDatabase
