// Why a scenario was refused.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace Scenario {

struct Problem {
   std::string file;
   int line = 1;         // 0: it is about the file as a whole
   std::string message;  // what is wrong, and what would be right

   // "FILE:LINE: MESSAGE", fit to be shown: in one line, and without control characters. About the
   // file as a whole "FILE: MESSAGE".
   std::string text() const;
};

// All that is wrong with a scenario. what() has one line per problem, up to kMostShown, and then
// the number of the others.
class ReadError : public std::runtime_error {
 public:
   static constexpr std::size_t kMostShown = 20;

   // One problem at least; in the order in which they are to be shown.
   explicit ReadError( std::vector< Problem > problems );

   std::vector< Problem > const & problems() const { return problems_; }

 private:
   std::vector< Problem > problems_;
};

}  // namespace Scenario
