// docs/tutorial.md: its commands print what it says, and the files that it has the reader write are
// the ones that they play.
//
// A fenced block `console` holds commands behind "$ ", a command's further lines behind "> ", and
// below each command its output, where a line "..." stands for any number of lines. A fenced block
// with a name behind its language, as in "yaml mine/scenario.yaml", is a file. Other blocks are
// neither run nor written.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include <Shell.h>

namespace {

namespace fs = std::filesystem;
using Lines = std::vector< std::string >;

constexpr char const * kTerminal = "100";

Lines linesOf( std::string const & text ) {
   Lines lines;
   std::istringstream stream( text );
   for ( std::string line; std::getline( stream, line ); ) {
      lines.push_back( line );
   }
   return lines;
}

std::string joined( Lines const & lines ) {
   std::string text;
   for ( std::string const & line : lines ) {
      text += line + '\n';
   }
   return text;
}

// --- The document

struct Block {
   std::string language;
   std::string file;  // its name; empty: none
   Lines lines;
};

std::vector< Block > blocksOf( std::string const & document ) {
   std::string const fence = "```";
   std::vector< Block > blocks;
   bool isInside = false;
   for ( std::string const & line : linesOf( document ) ) {
      if ( !line.starts_with( fence ) ) {
         if ( isInside ) {
            blocks.back().lines.push_back( line );
         }
         continue;
      }
      isInside = !isInside;
      if ( isInside ) {
         Block & block = blocks.emplace_back();
         std::istringstream( line.substr( fence.size() ) ) >> block.language >> block.file;
      }
   }
   return blocks;
}

struct Typed {
   std::string command;
   Lines output;
};

std::vector< Typed > typedIn( Block const & block ) {
   std::vector< Typed > all;
   for ( std::string const & line : block.lines ) {
      if ( line.starts_with( "$ " ) ) {
         all.push_back( { line.substr( 2 ), {} } );
      } else if ( line.starts_with( "> " ) && !all.empty() && all.back().output.empty() ) {
         all.back().command += '\n' + line.substr( 2 );
      } else if ( !all.empty() ) {
         all.back().output.push_back( line );
      } else {
         ADD_FAILURE() << "output without a command: " << line;
      }
   }
   return all;
}

// --- The comparison

bool isGap( std::string const & line ) {
   std::size_t const first = line.find_first_not_of( ' ' );
   return first != std::string::npos && line.substr( first ) == "...";
}

// Whether the lines from there on are as expected.
bool isAs( Lines const & expected, std::size_t e, Lines const & lines, std::size_t l ) {
   if ( e == expected.size() ) {
      return l == lines.size();
   }
   if ( isGap( expected[ e ] ) ) {
      for ( std::size_t next = l; next <= lines.size(); ++next ) {
         if ( isAs( expected, e + 1, lines, next ) ) {
            return true;
         }
      }
      return false;
   }
   return l < lines.size() && lines[ l ] == expected[ e ] && isAs( expected, e + 1, lines, l + 1 );
}

bool isAs( Lines const & expected, Lines const & lines ) {
   return isAs( expected, 0, lines, 0 );
}

// --- The reader

// A reader's folder: the clone as far as the tutorial needs it, and the files that it has written.
class Reader {
 public:
   Reader() {
      fs::create_directory( folder_.path() / "build" );
      fs::create_directory_symlink( VORNAL_BINARY_DIR, folder_.path() / "build/release" );
      fs::create_directory_symlink( VORNAL_SOURCE_DIR "/scenarios", folder_.path() / "scenarios" );
   }

   void reads( Block const & block ) {
      if ( !block.file.empty() ) {
         fs::path const file = folder_.path() / block.file;
         fs::create_directories( file.parent_path() );
         std::ofstream( file ) << joined( block.lines );
      } else if ( block.language == "console" ) {
         for ( Typed const & typed : typedIn( block ) ) {
            types( typed );
         }
      }
   }

   std::size_t commands() const { return commands_; }

 private:
   void types( Typed const & typed ) {
      ++commands_;
      auto const ran = Support::typed( typed.command, folder_.path(), kTerminal );
      EXPECT_TRUE( isAs( typed.output, linesOf( ran.out ) ) )
         << "$ " << typed.command << "\n--- it prints:\n"
         << ran.out << "--- the tutorial says:\n"
         << joined( typed.output );
   }

   Support::Directory folder_;
   std::size_t commands_ = 0;
};

std::string tutorial() {
   return Support::contentOf( VORNAL_SOURCE_DIR "/docs/tutorial.md" );
}

TEST( Tutorial, SaysWhatItsCommandsPrint ) {
   Reader reader;
   for ( Block const & block : blocksOf( tutorial() ) ) {
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
