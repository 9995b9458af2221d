#include <Rules/Rule.h>

namespace Reference {

std::string Rule::text() const {
   std::string text = "unit " + std::to_string( unit ) +
                      ( group == Group::ingress ? " ingress '" : " egress '" ) + name + "':";
   for ( auto const & [ qualifier, value ] : qualifiers ) {
      text += " " + qualifier + " " + value + ";";
   }
   text += " does";
   for ( auto const & [ action, value ] : actions ) {
      text += " " + action + " " + value + ";";
   }
   return text + " priority " + priority + ( isWritten ? "" : "; not written" );
}

std::string Call::text() const {
   std::string text = operation + " unit " + std::to_string( unit ) + " '" + rule + "'";
   for ( auto const & [ name, value ] : values ) {
      text += " " + name + "=" + value;
   }
   return text;
}

std::string under( unsigned long data, unsigned long mask ) {
   return std::to_string( data ) + " under " + std::to_string( mask );
}

}  // namespace Reference
