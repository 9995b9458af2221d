// The words of an exploration's file.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <Exploring/Exchanges.h>

namespace Exploring {

struct Words {
   std::string name;
   std::string base;     // the file of a scenario, as it is written
   std::string variant;  // empty: that of the scenario
   std::size_t length = 0;
   std::string eventsOf;  // the file of another exploration, as it is written; empty: none
   int eventsOfLine = 1;
   std::vector< Alike > alike;
   int alikeLine = 1;
   std::vector< int > stepLines;  // one for each step
   std::vector< int > eventLines;
};

// Scenario::ReadError with every mistake in the words; steps and events are not looked into.
Words wordsIn( std::string const & text, std::filesystem::path const & file );

}  // namespace Exploring
