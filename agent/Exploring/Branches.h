// The branches of an exploration, and the file that keeps what was found in each.
//
// A branch is the work of one process tree: every canonical sequence of two events with all that
// begin with it, and the shorter ones alone. Their order is that of the events, so that every
// machine has the same, and a share of them is every n-th.
//
// The file has a line of JSON for the exploration, and one for each branch that is done. A line
// that was cut is left out, so an exploration that was ended goes on where it was.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <Exploring/Tree.h>
#include <Process/Workers.h>

namespace Exploring {

std::vector< Branch > branchesOf( Exploration const & exploration, std::size_t length );

// The findings of a branch in one line, and back; std::runtime_error for any other text.
std::string encoded( Branch const & branch, Findings const & findings );
std::pair< Branch, Findings > decoded( std::string const & line );

// What a worker sends: what `find` returns, or its error.
std::string resultOf( Branch const & branch, std::function< Findings() > const & find );
// The branch and its findings again. Story::InputError with the error, and when there is no result;
// `subject` is in front.
std::pair< Branch, Findings > findingsIn( Process::Worked const & worked,
                                          std::string const & subject );

class ResultFile {
 public:
   // Reads the branches that are done already, and goes on behind them. Story::InputError for a
   // file of another exploration, and one that cannot be written.
   ResultFile( std::filesystem::path const & file, Exploration const & exploration,
               std::size_t length );

   std::map< Sequence, Findings > const & done() const { return done_; }
   void add( Branch const & branch, Findings const & findings );

 private:
   std::filesystem::path file_;
   std::map< Sequence, Findings > done_;
   std::ofstream out_;
};

// The branches of a file of results. Story::InputError for a file of another exploration, and one
// that cannot be read.
std::map< Sequence, Findings > resultsIn( std::filesystem::path const & file,
                                          Exploration const & exploration, std::size_t length );

}  // namespace Exploring
