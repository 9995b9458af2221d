// A document whose commands are typed and whose files are written, as by a reader.
//
// A fenced block `console` holds commands behind "$ ", a command's further lines behind "> ", and
// below each command its output, where a line "..." stands for any number of lines. A fenced block
// with a name behind its language, as in "yaml mine/scenario.yaml", is a file. Other blocks are
// neither run nor written.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <Shell.h>

namespace Support {

using Lines = std::vector< std::string >;

inline Lines linesOf( std::string const & text ) {
   Lines lines;
   std::istringstream stream( text );
   for ( std::string line; std::getline( stream, line ); ) {
      lines.push_back( line );
   }
   return lines;
}

inline std::string joined( Lines const & lines ) {
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

inline std::vector< Block > blocksOf( std::string const & document ) {
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

inline std::vector< Typed > typedIn( Block const & block ) {
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

inline bool isGap( std::string const & line ) {
   std::size_t const first = line.find_first_not_of( ' ' );
   return first != std::string::npos && line.substr( first ) == "...";
}

// Whether the lines from there on are as expected.
inline bool isAs( Lines const & expected, std::size_t e, Lines const & lines, std::size_t l ) {
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

inline bool isAs( Lines const & expected, Lines const & lines ) {
   return isAs( expected, 0, lines, 0 );
}

// --- The reader

// Has a folder of its own, with the files that the document has it write.
class Reader {
 public:
   std::filesystem::path const & folder() const { return folder_.path(); }

   void reads( Block const & block ) {
      if ( !block.file.empty() ) {
         std::filesystem::path const file = folder() / block.file;
         std::filesystem::create_directories( file.parent_path() );
         std::ofstream( file ) << joined( block.lines );
      } else if ( block.language == "console" ) {
         for ( Typed const & one : typedIn( block ) ) {
            types( one );
         }
      }
   }

   std::size_t commands() const { return commands_; }

 private:
   void types( Typed const & one ) {
      ++commands_;
      auto const ran = typed( one.command, folder(), "100" );
      EXPECT_TRUE( isAs( one.output, linesOf( ran.out ) ) )
         << "$ " << one.command << "\n--- it prints:\n"
         << ran.out << "--- the document says:\n"
         << joined( one.output );
   }

   Directory folder_;
   std::size_t commands_ = 0;
};

}  // namespace Support
