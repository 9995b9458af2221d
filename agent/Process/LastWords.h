// The last lines of a stopped process, and the assertion among them.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include <Story/Event.h>

namespace Process {

// The assertion that a line of standard error reports (Quelm/Assert.h): `FILE:LINE: FUNCTION:
// Assertion 'EXPRESSION' failed.` Nothing for any other line. Takes time in proportion to the
// line's length.
std::optional< Story::Assertion > assertionIn( std::string_view line );

class LastWords {
 public:
   static constexpr std::size_t kMostLines = 20;
   // In bytes; a longer line keeps its beginning and ends in " ...".
   static constexpr std::size_t kLongestLine = 4096;

   void lineNew( std::string const & line );

   std::deque< std::string > const & lines() const { return lines_; }
   // The last assertion that was reported.
   std::optional< Story::Assertion > const & assertion() const { return assertion_; }

 private:
   std::deque< std::string > lines_;
   std::optional< Story::Assertion > assertion_;
};

}  // namespace Process
