// An event is written in one pair of files. The pipe, the document and the writers find all they
// need there.
#include <filesystem>
#include <set>

#include <gtest/gtest.h>

#include <Support.h>

namespace {

using Files = std::set< std::string >;

// The files of the stories that name the event.
Files filesThatName( std::string const & event ) {
   std::filesystem::path const stories =
      std::filesystem::path( VORNAL_SOURCE_DIR ) / "agent" / "Story";
   Files files;
   for ( auto const & entry : std::filesystem::recursive_directory_iterator( stories ) ) {
      if ( entry.is_regular_file() &&
           Support::timesIn( Support::contentOf( entry ), event ) != 0 ) {
         files.insert( relative( entry.path(), stories ).string() );
      }
   }
   return files;
}

TEST( EventPlaces, AreTwoFiles ) {
   EXPECT_EQ( filesThatName( "ForeignEntriesAre" ), ( Files{ "ChipEvents.cpp", "ChipEvents.h" } ) );
   EXPECT_EQ( filesThatName( "EntityLookedUp" ),
              ( Files{ "PluginEvents.cpp", "PluginEvents.h" } ) );
   EXPECT_EQ( filesThatName( "OutputLine" ), ( Files{ "ProcessEvents.cpp", "ProcessEvents.h" } ) );
}

}  // namespace
