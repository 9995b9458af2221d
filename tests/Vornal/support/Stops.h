// What a process that stops says on standard error. Every pattern here names the operation that
// stops: the same expression is asserted in several of them.
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

// The same of an operation with its class, "Class::operation", in whatever file that is.
inline std::string stopsAt( std::string const & operation, std::string const & expression ) {
   return "^[A-Za-z0-9]+\\.(cpp|h):[0-9]+: [^\n]*[ :]" + literally( operation ) +
          "\\([^\n]*: " + literally( "Assertion '" + expression + "' failed." ) + "\n$";
}

// The use of an empty reference to a `type`.
inline std::string stopsAtEmptyReferenceTo( std::string const & type ) {
   return "^Ptr\\.h:[0-9]+: [^\n]*::operator->\\([^\n]*" + literally( type ) +
          "[^\n]*: " + literally( "Assertion '\"reference is not empty\" && target_' failed." ) +
          "\n$";
}

// A failed field call: the error line and the assertion that follows, and nothing else.
inline std::string failedCall( std::string const & place, std::string const & operation,
                               std::string const & call, std::string const & reason ) {
   return "^" + literally( place ) + ( place.ends_with( ':' ) ? "[0-9]+" : "" ) + " " +
          literally( call + " API ERROR:" + reason ) + "\n" +
          assertionLine( place, operation, "0" ) + "$";
}

}  // namespace Support
