#include <Questions/ExplanationPart.h>

#include <algorithm>

#include <Story/InputError.h>
#include <Text/Words.h>

namespace Questions {

namespace {

using Story::Node;

bool isOfInterfaces( Node const & node ) {
   return node.kind == "copies" || node.kind == "no-copies";
}

// The names by which the copy, or the interface without one, can be asked for.
std::vector< std::string > namesOf( Node const & copy ) {
   std::vector< std::string > names;
   for ( Story::NamedCell const & value : copy.values ) {
      bool const isName =
         value.name == "interface" || value.name == "member" || value.name == "portChannel";
      auto const * const name = std::get_if< std::string >( &value.cell.value );
      if ( isName && name && !name->empty() ) {
         names.push_back( *name );
      }
   }
   return names;
}

bool isNamed( Node const & copy, std::string const & interface ) {
   auto const names = namesOf( copy );
   return std::find( names.begin(), names.end(), interface ) != names.end();
}

[[noreturn]] void refuse( Node const & frame, std::string const & interface ) {
   std::vector< std::string > all;
   for ( Node const & node : frame.children ) {
      for ( Node const & copy : node.children ) {
         auto const names = isOfInterfaces( node ) ? namesOf( copy ) : std::vector< std::string >();
         all.insert( all.end(), names.begin(), names.end() );
      }
   }
   std::sort( all.begin(), all.end() );
   all.erase( std::unique( all.begin(), all.end() ), all.end() );
   throw Story::InputError( "--interface: the switch has no '" + interface + "'; give " +
                            Text::listed( { all.begin(), all.end() } ) );
}

}  // namespace

Node partAbout( Node const & frame, std::string const & interface ) {
   Node part{ frame.kind, frame.text, frame.values };
   bool isFound = false;
   bool hasInterfaces = false;
   for ( Node child : frame.children ) {
      if ( child.kind == "headers" ) {
         continue;
      }
      if ( child.kind == "decision" ) {
         child.children.clear();
      }
      if ( isOfInterfaces( child ) ) {
         hasInterfaces = true;
         std::erase_if( child.children,
                        [ & ]( Node const & copy ) { return !isNamed( copy, interface ); } );
         if ( child.children.empty() ) {
            continue;
         }
         isFound = true;
      }
      part.add( std::move( child ) );
   }
   if ( hasInterfaces && !isFound ) {
      refuse( frame, interface );
   }
   return part;
}

}  // namespace Questions
