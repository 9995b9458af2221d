#include <Story/Table.h>

#include <algorithm>
#include <numeric>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Text/Printable.h>

namespace Story {

namespace {

constexpr std::string_view kSentence = "because";  // the column that holds a sentence
constexpr std::size_t kIndent = 6;                 // of a sentence
constexpr std::size_t kGap = 2;                    // between columns
constexpr std::size_t kNarrowest = 8;              // a column is not made narrower than this

using Lines = std::vector< std::string >;

// "virtualPort" as "VIRTUAL PORT"
std::string headingOf( std::string const & name ) {
   std::string heading;
   for ( char const c : name ) {
      if ( std::isupper( static_cast< unsigned char >( c ) ) ) {
         heading += ' ';
      }
      heading += static_cast< char >( std::toupper( static_cast< unsigned char >( c ) ) );
   }
   return heading;
}

// The text in lines of at most `width` characters, broken at blanks where there are any.
Lines wrapped( std::string const & text, std::size_t width ) {
   Lines lines;
   std::string rest = text;
   while ( rest.size() > width ) {
      std::size_t const blank = rest.rfind( ' ', width );
      std::size_t const end = blank == std::string::npos || blank == 0 ? width : blank;
      lines.push_back( rest.substr( 0, end ) );
      rest.erase( 0, rest[ end ] == ' ' ? end + 1 : end );
   }
   lines.push_back( rest );
   return lines;
}

// The widths of the columns: as wide as their texts, and the widest ones narrower until all fit.
std::vector< std::size_t > widthsOf( std::vector< Lines > const & texts, std::size_t width ) {
   std::vector< std::size_t > widths( texts.front().size(), 0 );
   for ( Lines const & row : texts ) {
      for ( std::size_t n = 0; n < row.size(); ++n ) {
         widths[ n ] = std::max( widths[ n ], row[ n ].size() );
      }
   }
   auto const total = [ & ] {
      return std::accumulate( widths.begin(), widths.end(), kGap * ( widths.size() - 1 ) );
   };
   while ( total() > width ) {
      auto const widest = std::max_element( widths.begin(), widths.end() );
      if ( *widest <= kNarrowest ) {
         break;
      }
      --*widest;
   }
   return widths;
}

std::string rowText( Lines const & row, std::vector< std::size_t > const & widths ) {
   std::vector< Lines > cells;
   std::size_t height = 1;
   for ( std::size_t n = 0; n < row.size(); ++n ) {
      cells.push_back( wrapped( row[ n ], widths[ n ] ) );
      height = std::max( height, cells.back().size() );
   }
   std::string text;
   for ( std::size_t line = 0; line < height; ++line ) {
      std::string one;
      for ( std::size_t n = 0; n < cells.size(); ++n ) {
         std::string const part = line < cells[ n ].size() ? cells[ n ][ line ] : "";
         one += fmt::format( "{:<{}}", part, widths[ n ] + kGap );
      }
      one.erase( one.find_last_not_of( ' ' ) + 1 );
      text += one + '\n';
   }
   return text;
}

// The sentence in lines of its own, indented.
std::string sentenceText( Cell const & cell, std::size_t width ) {
   std::string const indent( kIndent, ' ' );
   std::string text;
   for ( std::string const & line :
         wrapped( std::string( kSentence ) + ": " + Text::printable( cell.words() ),
                  std::max( width, kNarrowest + kIndent ) - kIndent ) ) {
      text += indent + line + '\n';
   }
   return text;
}

}  // namespace

bool Cell::has( std::string const & text ) const {
   if ( auto const * const texts = std::get_if< std::vector< std::string > >( &value ) ) {
      return std::find( texts->begin(), texts->end(), text ) != texts->end();
   }
   return words() == text;
}

std::string Cell::words() const {
   if ( auto const * const number = std::get_if< U64 >( &value ) ) {
      return std::to_string( *number );
   }
   if ( auto const * const text = std::get_if< std::string >( &value ) ) {
      return *text;
   }
   if ( auto const * const texts = std::get_if< std::vector< std::string > >( &value ) ) {
      return texts->empty() ? "-" : fmt::format( "{}", fmt::join( *texts, ", " ) );
   }
   return "-";
}

std::string tableText( Table const & table, std::size_t width ) {
   if ( table.rows.empty() ) {
      return "no " + table.name + '\n';
   }
   bool const hasSentence = table.columns.back() == kSentence;
   std::size_t const columns = table.columns.size() - ( hasSentence ? 1 : 0 );
   std::vector< Lines > texts( 1 );
   for ( std::size_t n = 0; n < columns; ++n ) {
      texts.front().push_back( headingOf( table.columns[ n ] ) );
   }
   for ( auto const & row : table.rows ) {
      Lines & line = texts.emplace_back();
      for ( std::size_t n = 0; n < columns; ++n ) {
         line.push_back( Text::printable( row[ n ].words() ) );
      }
   }
   auto const widths = widthsOf( texts, width );
   std::string text = rowText( texts.front(), widths );
   for ( std::size_t n = 0; n < table.rows.size(); ++n ) {
      text += rowText( texts[ n + 1 ], widths );
      text += hasSentence ? sentenceText( table.rows[ n ].back(), width ) : "";
   }
   return text;
}

}  // namespace Story
