// CONTRIBUTING.md says which sources a new step, event or subcommand touches: its own pair of
// files, and for a step or a subcommand the table of all.
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <Support.h>

namespace {

namespace fs = std::filesystem;

using Files = std::set< std::string >;

fs::path const kAgent = fs::path( VORNAL_SOURCE_DIR ) / "agent";

std::vector< fs::path > filesBelow( fs::path const & folder ) {
   std::vector< fs::path > files;
   for ( auto const & entry : fs::recursive_directory_iterator( folder ) ) {
      if ( entry.is_regular_file() ) {
         files.push_back( entry.path() );
      }
   }
   return files;
}

// The files below `folder` that hold the text.
Files filesWith( std::string const & text, fs::path const & folder ) {
   Files files;
   for ( fs::path const & file : filesBelow( folder ) ) {
      if ( Support::timesIn( Support::contentOf( file ), text ) != 0 ) {
         files.insert( relative( file, folder ).string() );
      }
   }
   return files;
}

// The headers of the folder that declare a class of that kind, without ".h".
std::vector< std::string > classesOf( std::string const & base, std::string const & folder ) {
   std::vector< std::string > names;
   for ( fs::path const & file : filesBelow( kAgent / folder ) ) {
      if ( file.extension() == ".h" &&
           Support::contentOf( file ).find( "final : public " + base ) != std::string::npos ) {
         names.push_back( file.stem() );
      }
   }
   return names;
}

// Each class of that kind is included by its own source and by the table, and by nothing else.
void expectAPairAndARowForEach( std::vector< std::string > const & classes,
                                std::string const & folder ) {
   for ( std::string const & name : classes ) {
      EXPECT_EQ( filesWith( "#include <" + folder + "/" + name + ".h>", kAgent ),
                 ( Files{ folder + "/" + name + ".cpp", folder + "/Table.cpp" } ) )
         << name;
   }
}

TEST( Recipes, AnEventTouchesTwoFiles ) {
   fs::path const stories = kAgent / "Story";
   EXPECT_EQ( filesWith( "ForeignEntriesAre", stories ),
              ( Files{ "ChipEvents.cpp", "ChipEvents.h" } ) );
   EXPECT_EQ( filesWith( "EntityLookedUp", stories ),
              ( Files{ "PluginEvents.cpp", "PluginEvents.h" } ) );
   EXPECT_EQ( filesWith( "OutputLine", stories ),
              ( Files{ "ProcessEvents.cpp", "ProcessEvents.h" } ) );
}

TEST( Recipes, AStepTouchesAPairOfFilesAndTheTable ) {
   expectAPairAndARowForEach( { "Call", "ClassIdAllocatorStep", "DesignatedForwarder", "Dump",
                                "FailCall", "ForeignEntries", "Note", "Replace", "Set", "Turn" },
                              "Steps" );
}

TEST( Recipes, ASubcommandTouchesAPairOfFilesAndTheTable ) {
   std::vector< std::string > const commands = classesOf( "Command", "CommandLine" );
   EXPECT_GE( commands.size(), 5U );
   expectAPairAndARowForEach( commands, "CommandLine" );
}

}  // namespace
