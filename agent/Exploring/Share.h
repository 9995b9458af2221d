// A share of an exploration: the branches that one machine tries, and what it has found so far.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include <Exploring/Branches.h>

namespace Exploring {

// Every `of`-th branch, from the `number`-th on; numbers count from 1.
struct Shard {
   U32 number = 1;
   U32 of = 1;
};

class Share {
 public:
   // Takes the branches that are done from the file of results, where one is named, and keeps the
   // others in it. Story::InputError as ResultFile.
   Share( Exploration const & exploration, std::size_t length, Shard shard,
          std::filesystem::path const & results );

   // Not tried yet when the share was made.
   std::vector< Branch > const & open() const { return open_; }
   void add( Branch const & branch, Findings const & findings );

   Findings const & findings() const { return findings_; }

 private:
   std::optional< ResultFile > file_;
   std::vector< Branch > open_;
   Findings findings_;
};

}  // namespace Exploring
