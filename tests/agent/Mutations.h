// Scenarios that somebody has broken: each shipped one, changed in one place, the same way in every
// run of the same seed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <Schema.h>

namespace Mutations {

inline constexpr std::uint32_t kSeed = 20261121;

// Every scenario that ships, those that show limits included.
std::vector< std::filesystem::path > shippedFiles();

// A scenario as a value with one change: a member or an element that is gone, doubled, renamed, or
// replaced by what does not belong there; or two that have changed places.
struct Changed {
   Schema::Json value;
   std::string what;
};
Changed structural( Schema::Json const & scenario, std::mt19937 & random );

// Calls `visit` with the scenario changed at each place that is not among `seen` and is then: in
// place of a number every other one that matters somewhere, and so for addresses, interfaces and
// other texts.
void atEveryPlace( Schema::Json const & scenario, std::set< std::string > & seen,
                   std::function< void( Changed const & ) > const & visit );

// A scenario's text with one change: cut off, a byte too many or too few, a line gone or doubled, a
// quote or a bracket put in.
struct ChangedText {
   std::string text;
   std::string what;
};
ChangedText textual( std::string const & text, std::mt19937 & random );

}  // namespace Mutations
