// The manual page: well-formed, and complete by itself.
#include <gtest/gtest.h>

#include <CommandLine/DeclaredWords.h>
#include <Support.h>

namespace {

class Manual : public testing::Test {
 protected:
   Support::Directory const directory;
   std::filesystem::path const file =
      directory.file( "vornal.1", Support::vornal( { "manual" } ).out );
   std::filesystem::path const out = directory.path() / "out";

   // What a command prints about the page.
   std::string printed( std::string const & command ) const {
      std::string const line = command + ' ' + file.string() + " > " + out.string() + " 2>&1";
      EXPECT_NE( std::system( line.c_str() ), -1 );
      return Support::contentOf( out );
   }
};

TEST_F( Manual, HasNoMistakesOfItsLanguage ) {
   EXPECT_EQ( printed( "mandoc -T lint -W error" ), "" );
   // The page has no date: it is made when the program is installed.
   EXPECT_EQ( printed( "mandoc -T lint -W warning" ),
              "mandoc: " + file.string() + ":1:14: WARNING: missing date, using \"\": TH\n" );
}

TEST_F( Manual, NamesEachCommandWithItsWordsAndExamples ) {
   std::string const text = printed( "mandoc -T utf8 -O width=1000" );
   auto const commands = CommandLine::declaredCommands();
   EXPECT_GE( commands.size(), 9U );
   std::string plain;
   for ( char const one : text ) {
      if ( one == '\b' ) {
         plain.pop_back();
      } else {
         plain += one;
      }
   }
   for ( CommandLine::DeclaredCommand const & command : commands ) {
      EXPECT_NE( plain.find( "vornal " + command.name + " [OPTION]..." ), std::string::npos )
         << plain;
      EXPECT_NE( plain.find( command.purpose ), std::string::npos ) << command.purpose;
      for ( std::string const & example : command.examples ) {
         EXPECT_NE( plain.find( example + '\n' ), std::string::npos ) << example << plain;
      }
      for ( CommandLine::DeclaredWord const & option : command.options ) {
         EXPECT_NE( plain.find( option.names.back() ), std::string::npos ) << option.names.back();
      }
   }
   for ( std::string const section : { "NAME", "SYNOPSIS", "DESCRIPTION", "EXIT STATUS",
                                       "ENVIRONMENT", "FILES", "SEE ALSO" } ) {
      EXPECT_NE( plain.find( '\n' + section + '\n' ), std::string::npos ) << section;
   }
}

}  // namespace
