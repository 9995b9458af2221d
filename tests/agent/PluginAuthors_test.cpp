// docs/plug-in-authors.md: it shows the project in tests/ground/consumer, file by file, and its
// commands print what it says. `make check` builds that project against the installed tree.
#include <gtest/gtest.h>

#include <map>

#include <TypedDocument.h>

namespace {

namespace fs = std::filesystem;

std::vector< Support::Block > guide() {
   return Support::blocksOf( Support::contentOf( VORNAL_SOURCE_DIR "/docs/plug-in-authors.md" ) );
}

TEST( PluginAuthors, SeeEachFileOfTheProjectAsItIs ) {
   std::map< std::string, std::string > shown;
   for ( Support::Block const & block : guide() ) {
      if ( !block.file.empty() ) {
         shown[ block.file ] += Support::joined( block.lines );
      }
   }
   std::map< std::string, std::string > project;
   for ( auto const & file :
         fs::directory_iterator( VORNAL_SOURCE_DIR "/tests/ground/consumer" ) ) {
      project[ file.path().filename().string() ] = Support::contentOf( file.path() );
   }
   EXPECT_GE( project.size(), 4U );
   for ( auto const & [ name, content ] : project ) {
      EXPECT_EQ( shown[ name ], content ) << name;
   }
   EXPECT_EQ( shown.size(), project.size() ) << "the guide shows a file that is not there";
}

TEST( PluginAuthors, ReadWhatTheCommandsPrint ) {
   Support::Reader reader;
   fs::create_directory_symlink( VORNAL_BINARY_DIR "/test-plugins", reader.folder() / "build" );
   for ( Support::Block const & block : guide() ) {
      reader.reads( block );
   }
   EXPECT_GE( reader.commands(), 5U );
}

}  // namespace
