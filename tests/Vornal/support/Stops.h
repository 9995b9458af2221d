// What a process that stops says on standard error.
#pragma once

#include <string>

namespace Support {

// A regular expression that matches `text` and nothing else.
inline std::string literally( std::string const & text ) {
   std::string expression;
   for ( char const letter : text ) {
      if ( std::string( "\\^$.|?*+()[]{}" ).find( letter ) != std::string::npos ) {
         expression += '\\';
      }
      expression += letter;
   }
   return expression;
}

// The line of a failed assertion in an operation of the state machine, whatever its arguments.
// `place` is "FILE:LINE", or "FILE:" for any line of the file.
inline std::string assertionLine( std::string const & place, std::string const & operation,
                                  std::string const & expression ) {
   return literally( place ) + ( place.ends_with( ':' ) ? "[0-9]+" : "" ) +
          ": [^\n]*::" + operation +
          "\\([^\n]*\\): " + literally( "Assertion '" + expression + "' failed." ) + "\n";
}

// A failed field call: the error line and the assertion that follows, and nothing else.
inline std::string failedCall( std::string const & place, std::string const & operation,
                               std::string const & call, std::string const & reason ) {
   return "^" + literally( place ) + ( place.ends_with( ':' ) ? "[0-9]+" : "" ) + " " +
          literally( call + " API ERROR:" + reason ) + "\n" +
          assertionLine( place, operation, "0" ) + "$";
}

}  // namespace Support
