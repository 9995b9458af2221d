// The scenarios that ship, for tests that take each of them.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Shipped {

inline std::filesystem::path fileOf( std::string const & name ) {
   return std::filesystem::path( VORNAL_SOURCE_DIR ) / "scenarios" / name / "scenario.yaml";
}

// Their names, less those that show limits.
inline std::vector< std::string > scenarios() {
   std::vector< std::string > names;
   for ( auto const & folder :
         std::filesystem::directory_iterator( VORNAL_SOURCE_DIR "/scenarios" ) ) {
      if ( std::filesystem::exists( folder.path() / "scenario.yaml" ) ) {
         names.push_back( folder.path().filename() );
      }
   }
   std::sort( names.begin(), names.end() );
   return names;
}

// As part of a test's name.
inline std::string nameOf( testing::TestParamInfo< std::string > const & scenario ) {
   std::string name = scenario.param;
   std::replace( name.begin(), name.end(), '-', '_' );
   return name;
}

}  // namespace Shipped
