// The catalogue of an exploration: a line for each way to end that was found, sorted.
//
//    difference missing-rule: Mark or drop packets at IFP from vtep IP N on shared segments
//    stop entryIds() < kMostSegments in Sample::Sm::add
//
// Empty lines and lines that begin with '#' are comments.
#pragma once

#include <filesystem>
#include <set>
#include <string>

#include <Exploring/Findings.h>

namespace Exploring {

using Catalogue = std::set< std::string >;

std::string lineOf( Key const & key );
Catalogue catalogueOf( Findings const & findings );
// Story::InputError when the file cannot be read.
Catalogue catalogueIn( std::filesystem::path const & file );

// Writes the catalogue, as "catalogue", and a scenario for each finding into the folder, which is
// made if it is missing. Story::InputError when it takes no files.
void writeFindings( std::filesystem::path const & folder, Exploration const & exploration,
                    Findings const & findings );

}  // namespace Exploring
