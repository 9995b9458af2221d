// The help of the program: of each command, with examples that work.
#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

#include <CommandLine/Table.h>
#include <Support.h>

#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

std::vector< std::string > examplesOf( CommandLine::Row const & row ) {
   std::vector< std::string > examples;
   std::istringstream lines{ std::string( row.examples ) };
   for ( std::string line; std::getline( lines, line ); ) {
      examples.push_back( line );
   }
   return examples;
}

TEST( ProgramHelp, ShowsTwoExamplesOfEachCommand ) {
   for ( CommandLine::Row const & row : CommandLine::table() ) {
      auto const examples = examplesOf( row );
      EXPECT_GE( examples.size(), 2U ) << row.name;
      auto const help = Support::vornal( { std::string( row.name ), "--help" } );
      EXPECT_EQ( help.exitCode, 0 ) << row.name;
      for ( std::string const & example : examples ) {
         EXPECT_NE( help.out.find( "\n  " + example + '\n' ), std::string::npos ) << help.out;
      }
   }
}

TEST( ProgramHelp, ShowsExamplesThatWork ) {
   Support::Directory const directory;
   fs::create_directory_symlink( VORNAL_SOURCE_DIR "/scenarios", directory.path() / "scenarios" );
   fs::create_directory_symlink( VORNAL_SOURCE_DIR "/docs", directory.path() / "docs" );
   fs::create_directory_symlink( VORNAL_SOURCE_DIR "/explorations",
                                 directory.path() / "explorations" );
   std::string const begin = "cd " + directory.path().string() +
                             " && PATH=" VORNAL_BINARY_DIR ":$PATH exec bash -o pipefail -c ";
   for ( CommandLine::Row const & row : CommandLine::table() ) {
      for ( std::string const & example : examplesOf( row ) ) {
         std::string command = example;
         for ( auto at = command.find( '\'' ); at != std::string::npos;
               at = command.find( '\'', at + 4 ) ) {
            command.replace( at, 1, "'\\''" );
         }
         int const status =
            std::system( ( begin + '\'' + command + "' < /dev/null > out 2> err" ).c_str() );
         std::string const complaint = Support::contentOf( directory.path() / "err" );
         // A comparison ends with 1 where it finds differences.
         bool const isComparison = row.name == "diff";
         EXPECT_EQ( WEXITSTATUS( status ), isComparison ? 1 : 0 ) << example << '\n' << complaint;
         EXPECT_EQ( complaint, "" ) << example;
      }
   }
}

TEST( ProgramHelp, IsThatOfTheOptionWhereItIsACommand ) {
   EXPECT_EQ( Support::vornal( { "help" } ).out, Support::vornal( { "--help" } ).out );
   for ( std::string_view const name : CommandLine::commandNames() ) {
      std::string const command( name );
      auto const help = Support::vornal( { "help", command } );
      EXPECT_EQ( help.exitCode, 0 );
      EXPECT_EQ( help.out, Support::vornal( { command, "--help" } ).out );
      EXPECT_NE( help.out.find( "Usage: vornal " + command ), std::string::npos ) << help.out;
   }
}

// By name; the parser has them by their addresses.
TEST( ProgramHelp, ListsExcludedOptionsInOneOrder ) {
   EXPECT_NE(
      Support::vornal( { "help", "run" } ).out.find( "Excludes: --events --until --what-if\n" ),
      std::string::npos );
}

TEST( ProgramHelp, NamesTheCommandThatWasProbablyMeant ) {
   auto const ran = Support::vornal( { "help", "rum" } );
   EXPECT_EQ( ran.exitCode, 2 );
   EXPECT_EQ( ran.out, "" );
   EXPECT_EQ( ran.err,
              "vornal help: COMMAND: no command 'rum'; did you mean 'run'?\n"
              "'vornal help --help' lists the words that it takes\n" );
}

TEST( ProgramHelp, ListsTheCommandsForPeople ) {
   std::string const help = Support::vornal( { "help" } ).out;
   for ( CommandLine::Row const & row : CommandLine::table() ) {
      EXPECT_EQ( help.find( "\n  " + std::string( row.name ) + ' ' ) == std::string::npos,
                 row.isHidden )
         << help;
   }
}

}  // namespace
