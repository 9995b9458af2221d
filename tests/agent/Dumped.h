// Dumps of the scenarios that ship, compared with the switches that they were made of.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <Steps/Reader.h>
#include <Support.h>

namespace Dumped {

// The last step after which there is a switch: the one in front of an expected stop's step.
inline std::size_t lastStep( std::filesystem::path const & scenario ) {
   Scenario::Model const model = Steps::readScenario( scenario );
   std::size_t last = model.steps.size();
   for ( std::size_t n = 0; n < model.steps.size(); ++n ) {
      bool const isStop = model.steps[ n ].action->description().find(
                             "the next step to stop the process" ) != std::string::npos;
      last = isStop ? n + 1 : last;
   }
   return last;
}

// The last one, and some before; with VORNAL_EVERY_STEP in the environment, all of them.
inline std::set< std::size_t > stepsOf( std::filesystem::path const & scenario ) {
   std::size_t const last = lastStep( scenario );
   std::set< std::size_t > steps{ last, last * 2 / 3 };
   for ( std::size_t n = 0; std::getenv( "VORNAL_EVERY_STEP" ) && n < last; ++n ) {
      steps.insert( n );
   }
   return steps;
}

// Whether a difference is one of the numbers that entries have in the chip.
inline bool isOfEntryNumber( nlohmann::json const & difference ) {
   static std::regex const numbers(
      "/plugins/.*/(entryId|efpEntryId|l2UcastRuleInstalled|l3UcastRuleInstalled|"
      "vniToTcamEntryId)\\[.*\\]" );
   return !difference[ "before" ].is_null() && !difference[ "after" ].is_null() &&
          std::regex_match( difference[ "item" ].get< std::string >(), numbers );
}

// Dumps the switch after that step. The dump leads to the same state, and says so where its rules
// have other numbers in the chip.
inline void expectSame( std::filesystem::path const & scenario, std::size_t step ) {
   Support::Directory const directory;
   std::string const dump = directory.path() / "dump.yaml";
   std::string const after = std::to_string( step );
   SCOPED_TRACE( scenario.string() + " after step " + after );
   auto const dumped = Support::vornal( { "dump", scenario, "--after", after, "-o", dump } );
   ASSERT_EQ( dumped.exitCode, 0 ) << dumped.err;
   std::string const text = Support::contentOf( dump );
   auto const diff = Support::vornal( { "diff", scenario, "--after", after, dump, "--json" } );
   ASSERT_LE( diff.exitCode, 1 ) << diff.err << text;
   bool hasOtherNumbers = false;
   nlohmann::json const differences = nlohmann::json::parse( diff.out );
   for ( auto const & kind : differences.value( "children", nlohmann::json::array() ) ) {
      for ( auto const & difference : kind[ "children" ] ) {
         EXPECT_TRUE( isOfEntryNumber( difference ) ) << difference << '\n' << text;
         hasOtherNumbers = true;
      }
   }
   bool const saysSo =
      text.find( "# Its rules have other numbers in the chip.\n" ) != std::string::npos;
   EXPECT_EQ( saysSo, hasOtherNumbers ) << text;
}

}  // namespace Dumped
