// Reads scenarios with all kinds of steps.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <Scenario/Reader.h>
#include <Scenario/Words.h>

namespace Steps {

// See Scenario::read() and Scenario::readText().
Scenario::Model readScenario( std::filesystem::path const & file,
                              std::vector< Scenario::AddedStep > const & added = {} );
Scenario::Model readScenarioText( std::string const & text, std::filesystem::path const & file,
                                  std::vector< Scenario::AddedStep > const & added = {},
                                  std::optional< std::size_t > own = {},
                                  Scenario::Root const & root = {} );
// See Scenario::examine().
Scenario::Findings examineScenario( std::filesystem::path const & file );
Scenario::Findings examineScenarioText( std::string const & text,
                                        std::filesystem::path const & file );

// The words of every mapping with a fixed set of words ("switch", "publish"), and the texts of
// every choice ("variant"), by place.
std::vector< Scenario::WordList > vocabulary();

}  // namespace Steps
