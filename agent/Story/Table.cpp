#include <Story/Table.h>

#include <algorithm>
#include <limits>
#include <numeric>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Text/Printable.h>
#include <Text/Wrapping.h>

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

std::size_t widthOf( std::vector< std::size_t > const & widths ) {
   return std::accumulate( widths.begin(), widths.end(), kGap * ( widths.size() - 1 ) );
}

// The widths of the columns: as wide as their texts, and the widest ones narrower until all fit.
std::vector< std::size_t > widthsOf( std::vector< Lines > const & texts, std::size_t width ) {
   std::vector< std::size_t > widths( texts.front().size(), 0 );
   for ( Lines const & row : texts ) {
      for ( std::size_t n = 0; n < row.size(); ++n ) {
         widths[ n ] = std::max( widths[ n ], row[ n ].size() );
      }
   }
   while ( widthOf( widths ) > width ) {
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
      cells.push_back( Text::wrapped( row[ n ], widths[ n ] ) );
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

// The cell in lines of its own, indented, behind its column's name.
std::string sentenceText( std::string const & column, Cell const & cell, std::size_t width ) {
   std::string const indent( kIndent, ' ' );
   std::string text;
   for ( std::string const & line :
         Text::wrapped( column + ": " + Text::printable( cell.words() ),
                        std::max( width, kNarrowest + kIndent ) - kIndent ) ) {
      text += indent + line + '\n';
   }
   return text;
}

// The heading and the rows, as far as the first `columns` of them.
std::vector< Lines > textsOf( Table const & table, std::size_t columns ) {
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
   return texts;
}

// Whether a column gets less than half of the width that its texts have.
bool isSqueezed( Table const & table, std::size_t columns, std::size_t width ) {
   auto const texts = textsOf( table, columns );
   auto const wished = widthsOf( texts, std::numeric_limits< std::size_t >::max() );
   auto const given = widthsOf( texts, width );
   return !std::equal( given.begin(), given.end(), wished.begin(),
                       []( std::size_t has, std::size_t wants ) { return 2 * has >= wants; } );
}

// The one row of a squeezed table: a line for each column.
std::string recordText( Table const & table, std::size_t columns, std::size_t width ) {
   Table record{ table.name, { "", "" }, {} };
   for ( std::size_t n = 0; n < columns; ++n ) {
      record.rows.push_back( { headingOf( table.columns[ n ] ), table.rows.front()[ n ] } );
   }
   std::vector< Lines > texts = textsOf( record, record.columns.size() );
   auto const widths = widthsOf( texts, width );
   std::string text;
   for ( std::size_t n = 1; n < texts.size(); ++n ) {
      text += rowText( texts[ n ], widths );
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
   std::size_t columns = table.columns.size();
   bool const isSentence = table.columns.back() == kSentence;
   bool const isSqueezedByLast = columns > 1 && isSqueezed( table, columns, width ) &&
                                 !isSqueezed( table, columns - 1, width );
   bool const hasSentence = isSentence || isSqueezedByLast;
   columns -= hasSentence ? 1 : 0;
   bool const isRecord = table.rows.size() == 1 && isSqueezed( table, columns, width );
   auto const texts = textsOf( table, columns );
   auto const widths = widthsOf( texts, width );
   std::string text = isRecord ? "" : rowText( texts.front(), widths );
   for ( std::size_t n = 0; n < table.rows.size(); ++n ) {
      Cell const & last = table.rows[ n ].back();
      text += isRecord ? recordText( table, columns, width ) : rowText( texts[ n + 1 ], widths );
      text += hasSentence && last.words() != "-" ? sentenceText( table.columns.back(), last, width )
                                                 : "";
   }
   return text;
}

}  // namespace Story
