// What an exploration has found: how sequences of events end, other than well.
//
// A finding is a way to end: a stop at an assertion, a difference between the rules and the
// published state, a step without end, a failed call that nothing comes of. Of each there is one
// canonical sequence that is the shortest, and the first of the shortest ones.
#pragma once

#include <map>
#include <string>

#include <Exploring/Exploration.h>

namespace Exploring {

enum class Kind : U8 { stop, difference, hang, unnoticed };

// "stop", "difference", "hang", "unnoticed".
std::string_view nameOf( Kind kind );

// The order of sequences: the shorter one first.
bool isBefore( Sequence const & a, Sequence const & b );

struct Key {
   Kind kind;
   // Of a stop the assertion and its function; of differences their kinds and rules; of a failed
   // call its operation.
   std::string what;

   friend auto operator<=>( Key const &, Key const & ) = default;
};

struct Found {
   U64 sequences = 0;  // that end like this, with all that they stand for
   Sequence shortest;
};

struct Counts {
   U64 sequences = 0;  // that were tried
   U64 standFor = 0;   // these, and those that are like them
   U64 without = 0;    // further ones whose last event changed nothing
   U64 unnamed = 0;    // ends without room for what is found (SharedFindings.h)

   friend bool operator==( Counts const &, Counts const & ) = default;
};

struct Findings {
   Counts counts;
   std::map< Key, Found > all;

   void add( Key const & key, Sequence const & sequence, U64 weight );
   void add( Findings const & others );
};

}  // namespace Exploring
