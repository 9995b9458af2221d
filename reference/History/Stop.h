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

}  // namespace Reference
