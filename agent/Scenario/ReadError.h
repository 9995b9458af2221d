// The reasons for refusing a scenario.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace Scenario {

struct Problem {
   std::string file;
   int line = 1;         // 0: the problem concerns the file as a whole
   std::string message;  // the mistake and the remedy

   // "FILE:LINE: MESSAGE", or "FILE: MESSAGE" about the file as a whole; one line without control
   // characters.
   std::string text() const;
};

// All problems of a scenario. what() has one line per problem, up to kMostShown, and then the
// number of the others.
class ReadError : public std::runtime_error {
 public:
   static constexpr std::size_t kMostShown = 20;

   // One problem at least, in the order of the output.
   explicit ReadError( std::vector< Problem > problems );

   std::vector< Problem > const & problems() const { return problems_; }

 private:
   std::vector< Problem > problems_;
};

}  // namespace Scenario
