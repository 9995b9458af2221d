// docs/tutorial.md: its commands print what it says, and the files that it has the reader write are
// the ones that they play.
#include <gtest/gtest.h>

#include <TypedDocument.h>

namespace {

namespace fs = std::filesystem;
using Support::blocksOf;
using Support::isAs;
using Support::Lines;
using Support::typedIn;

std::string tutorial() {
   return Support::contentOf( VORNAL_SOURCE_DIR "/docs/tutorial.md" );
}

TEST( Tutorial, SaysWhatItsCommandsPrint ) {
   Support::Reader reader;
   fs::create_directory( reader.folder() / "build" );
   fs::create_directory_symlink( VORNAL_BINARY_DIR, reader.folder() / "build/release" );
   fs::create_directory_symlink( VORNAL_SOURCE_DIR "/scenarios", reader.folder() / "scenarios" );
   for ( Support::Block const & block : blocksOf( tutorial() ) ) {
      reader.reads( block );
   }
   EXPECT_GE( reader.commands(), 10U );
}

// --- The comparison itself

TEST( Tutorial, MayLeaveOutLinesOnlyWhereItSaysSo ) {
   EXPECT_TRUE( isAs( { "a", "   ...", "d" }, { "a", "b", "c", "d" } ) );
   EXPECT_TRUE( isAs( { "a", "...", "d" }, { "a", "d" } ) );
   EXPECT_TRUE( isAs( { "a", "..." }, { "a", "b" } ) );
   EXPECT_TRUE( isAs( { "...", "b", "...", "b" }, { "a", "b", "b", "b" } ) );
   EXPECT_FALSE( isAs( { "a", "d" }, { "a", "b", "d" } ) );
   EXPECT_FALSE( isAs( { "a", "...", "d" }, { "a", "b" } ) );
   EXPECT_FALSE( isAs( { "a" }, { "a", "b" } ) );
   EXPECT_FALSE( isAs( { "a", "b" }, { "a" } ) );
   EXPECT_FALSE( isAs( {}, { "a" } ) );
}

TEST( Tutorial, HasCommandsOverSeveralLinesAndFilesWithNames ) {
   auto const blocks = blocksOf(
      "text\n```console\n$ a '\n> b'\nout\n$ c\n```\n```yaml x/y.yaml\n"
      "k: v\n```\n```sh\nmake\n```\n" );
   ASSERT_EQ( blocks.size(), 3U );
   auto const typed = typedIn( blocks[ 0 ] );
   ASSERT_EQ( typed.size(), 2U );
   EXPECT_EQ( typed[ 0 ].command, "a '\nb'" );
   EXPECT_EQ( typed[ 0 ].output, Lines{ "out" } );
   EXPECT_EQ( typed[ 1 ].output, Lines{} );
   EXPECT_EQ( blocks[ 1 ].file, "x/y.yaml" );
   EXPECT_EQ( blocks[ 1 ].lines, Lines{ "k: v" } );
   EXPECT_EQ( blocks[ 2 ].file, "" );
}

}  // namespace
