// What an exploration has found: how sequences of events end, other than well.
//
// A finding is a way to end: a stop at an assertion, a difference between the rules and the
// published state, a step without end, a failed call that nothing comes of, a frame that goes wrong
// (Probing/Probes.h): for some calls, or at rest where no rule differs. Of each there is one
// canonical sequence that is the shortest, and the first of the shortest ones.
#pragma once

#include <array>
#include <map>
#include <string>

#include <Exploring/Exploration.h>

namespace Exploring {

enum class Kind : U8 { stop, difference, hang, unnoticed, transient, lasting };
inline constexpr std::array kKinds{ Kind::stop,      Kind::difference, Kind::hang,
                                    Kind::unnoticed, Kind::transient,  Kind::lasting };

// "stop", "difference", "hang", "unnoticed", "transient", "lasting".
std::string_view nameOf( Kind kind );

// The order of sequences: the shorter one first.
bool isBefore( Sequence const & a, Sequence const & b );

struct Key {
   Kind kind;
   // Of a stop the assertion and its function; of differences their kinds and rules; of a failed
   // call its operation; of frames what goes wrong.
   std::string what;

   friend auto operator<=>( Key const &, Key const & ) = default;
};

struct Found {
   U64 sequences = 0;  // that end like this, with all that they stand for
   Sequence shortest;
   // Of a transient: the longest one, in calls; the sequence is the shortest with one that long.
   U32 calls = 0;
};

// Whether a finding tells a as the shortest one, rather than b.
bool isMoreTelling( Found const & a, Found const & b );

struct Counts {
   U64 sequences = 0;  // that were tried
   U64 standFor = 0;   // these, and those that are like them
   U64 without = 0;    // further ones whose last event changed nothing
   U64 frames = 0;     // probes
   U64 unnamed = 0;    // ends without room for what is found (SharedFindings.h)

   friend bool operator==( Counts const &, Counts const & ) = default;
};

struct Findings {
   Counts counts;
   std::map< Key, Found > all;

   void add( Key const & key, Found const & one );
   void add( Findings const & others );
};

}  // namespace Exploring
