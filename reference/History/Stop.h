// The agent's process stops: something that was taken for granted does not hold. Nothing follows.
#pragma once

#include <string>

namespace Reference {

struct Stop {
   std::string expression;  // as the stop prints it
   std::string function;    // of the assertion; empty for an exception
};

inline void require( bool holds, char const * expression, char const * function ) {
   if ( !holds ) {
      throw Stop{ expression, function };
   }
}

// The chip has taken a call that sets or reads a field.
inline void requireTaken( int result, char const * function ) {
   require( result >= 0, "0", function );
}

inline void requireInstalled( int result, char const * function ) {
   require( result == 0, "rc == BCM_E_NONE && \"installEntry failed\"", function );
}

}  // namespace Reference
