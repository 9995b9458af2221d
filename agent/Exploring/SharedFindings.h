// Findings in memory that a process shares with those that it forks.
//
// One process writes at a time. Room is bounded: ways to end beyond kMost are counted and not
// named, and the texts of long ones are cut.
#pragma once

#include <string_view>

#include <Exploring/Findings.h>

namespace Exploring {

class SharedFindings {
 public:
   static constexpr std::size_t kMost = 512;
   static constexpr std::size_t kLongest = 500;

   // std::bad_alloc without memory.
   SharedFindings();
   SharedFindings( SharedFindings const & ) = delete;
   SharedFindings & operator=( SharedFindings const & ) = delete;
   ~SharedFindings();

   Counts & counts();
   void add( Kind kind, std::string_view what, Found const & one );

   Findings findings() const;

 private:
   struct Memory;

   Memory * memory_;
};

}  // namespace Exploring
