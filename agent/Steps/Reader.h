// Reads scenarios with all steps that there are.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <Scenario/Reader.h>
#include <Scenario/Words.h>

namespace Steps {

// As Scenario::read() and Scenario::readText() have it.
Scenario::Model readScenario( std::filesystem::path const & file );
Scenario::Model readScenarioText( std::string const & text, std::filesystem::path const & file );

// The words of every mapping with a fixed set of words ("switch", "publish"), and the texts of
// every value that is one of a few ("variant"), by place.
std::vector< Scenario::WordList > vocabulary();

}  // namespace Steps
