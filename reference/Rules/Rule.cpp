#include <Rules/Rule.h>

namespace Reference {

std::string textOf( std::set< unsigned > const & numbers ) {
   std::string text;
   for ( unsigned const number : numbers ) {
      text += ( text.empty() ? "" : " " ) + std::to_string( number );
   }
   return text;
}

std::string Rule::text() const {
   Content const & shown = content();
   std::string text = "unit " + std::to_string( unit ) +
                      ( group == Group::ingress ? " ingress '" : " egress '" ) + name + "':";
   for ( auto const & [ qualifier, match ] : shown.qualifiers ) {
      text += " " + qualifier + " " + std::to_string( match.data ) + " under " +
              std::to_string( match.mask ) + ";";
   }
   text += " does";
   for ( auto const & [ action, numbers ] : shown.actions ) {
      text += " " + action + ( action == "Drop" ? "" : " " + textOf( numbers ) ) + ";";
   }
   return text + " priority " + ( shown.priority ? std::to_string( *shown.priority ) : "default" ) +
          ( written ? "" : "; not written" );
}

std::string Call::text() const {
   std::string text = operation + " unit " + std::to_string( unit ) + " '" + rule + "'";
   for ( auto const & [ name, value ] : values ) {
      text += " " + name + "=" + value;
   }
   return text + ( code == 0 ? "" : " gives " + std::to_string( code ) );
}

}  // namespace Reference
