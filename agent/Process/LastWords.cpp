#include <Process/LastWords.h>

#include <regex>

namespace Process {

std::optional< Story::Assertion > assertionIn( std::string const & line ) {
   static std::regex const form( R"(([^:]+):([0-9]{1,9}): (.*): Assertion '(.*)' failed\.)" );
   std::smatch parts;
   if ( !std::regex_match( line, parts, form ) ) {
      return std::nullopt;
   }
   return Story::Assertion{ parts[ 1 ], std::stoi( parts[ 2 ] ), parts[ 3 ], parts[ 4 ] };
}

void LastWords::lineNew( std::string const & line ) {
   lines_.push_back( line );
   if ( lines_.size() > kMostLines ) {
      lines_.pop_front();
   }
   if ( auto const assertion = assertionIn( line ) ) {
      assertion_ = assertion;
   }
}

}  // namespace Process
