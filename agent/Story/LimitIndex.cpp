#include <Story/LimitIndex.h>

#include <algorithm>

namespace Story {

namespace {

constexpr std::string_view kRow = "| `";
constexpr std::string_view kSection = "### ";
constexpr std::string_view kRemedy = "- *Remedy:* ";
constexpr std::string_view kDeeper = "  ";  // before the further lines of a point

std::vector< std::string_view > linesOf( std::string_view text ) {
   std::vector< std::string_view > lines;
   while ( !text.empty() ) {
      std::size_t const end = std::min( text.find( '\n' ), text.size() );
      lines.push_back( text.substr( 0, end ) );
      text.remove_prefix( std::min( end + 1, text.size() ) );
   }
   return lines;
}

std::string trimmed( std::string_view text ) {
   std::size_t const begin = std::min( text.find_first_not_of( " `" ), text.size() );
   std::size_t const end = text.find_last_not_of( " `" );
   return end == std::string_view::npos ? "" : std::string( text.substr( begin, end + 1 - begin ) );
}

std::vector< std::string > split( std::string_view text, char separator ) {
   std::vector< std::string > parts;
   for ( std::size_t end = 0; end != std::string_view::npos; ) {
      end = text.find( separator );
      parts.push_back( trimmed( text.substr( 0, end ) ) );
      text.remove_prefix( std::min( end, text.size() - 1 ) + 1 );
   }
   return parts;
}

// A text without the targets of its links: "[title](#anchor)" becomes "title".
std::string withoutLinks( std::string text ) {
   for ( std::size_t middle = text.find( "](" ); middle != std::string::npos;
         middle = text.find( "](" ) ) {
      std::size_t const open = text.rfind( '[', middle );
      text.erase( middle, text.find( ')', middle ) + 1 - middle );
      text.erase( open, 1 );
   }
   return text;
}

// Only lines of the table "By the expression" have six cells.
bool isRow( std::vector< std::string > const & cells ) {
   constexpr std::size_t kCells = 8;  // with the text before the first and after the last bar
   return cells.size() == kCells;
}

LimitIndex::Row rowOf( std::vector< std::string > const & cells ) {
   LimitIndex::Row row{ cells[ 1 ], cells[ 2 ], cells[ 3 ],
                        cells[ 4 ], {},         withoutLinks( cells[ 6 ] ) };
   for ( std::string const & event : split( cells[ 5 ], ',' ) ) {
      row.events.insert( event );
   }
   return row;
}

// An assertion names its place. An exception leaves only its text, in the last printed line.
bool isExpressionOf( LimitIndex::Row const & row, Stopped const & stopped ) {
   if ( stopped.assertion ) {
      Assertion const & assertion = *stopped.assertion;
      return row.expression == assertion.expression && row.file == assertion.file &&
             assertion.isIn( row.function );
   }
   return row.file.empty() && stopped.isByException( row.expression );
}

bool isCause( LimitIndex::Row const & row, StopCause const & cause ) {
   bool const isOfVariant =
      row.variant == "both" || cause.variant.empty() || row.variant == cause.variant;
   return isOfVariant && std::any_of( cause.events.begin(), cause.events.end(),
                                      [ & ]( std::string const & event ) {
                                         return row.events.contains( event );
                                      } );
}

}  // namespace

LimitIndex::LimitIndex( std::string_view document ) {
   bool isInRemedy = false;
   for ( std::string_view const line : linesOf( document ) ) {
      if ( line.starts_with( kSection ) ) {
         sections_.push_back( { std::string( line.substr( kSection.size() ) ), {} } );
      } else if ( auto const cells = split( line, '|' );
                  line.starts_with( kRow ) && isRow( cells ) ) {
         rows_.push_back( rowOf( cells ) );
      }
      bool const isRemedy = line.starts_with( kRemedy ) && !sections_.empty();
      if ( isRemedy ) {
         sections_.back().remedy = line.substr( kRemedy.size() );
      } else if ( isInRemedy && line.starts_with( kDeeper ) ) {
         sections_.back().remedy += ' ';
         sections_.back().remedy += line.substr( kDeeper.size() );
         continue;
      }
      isInRemedy = isRemedy;
   }
}

std::vector< KnownLimit > LimitIndex::limitsAt( Stopped const & stopped,
                                                StopCause const & cause ) const {
   std::vector< KnownLimit > result;
   std::set< std::string > titles;
   for ( Row const & row : rows_ ) {
      if ( isExpressionOf( row, stopped ) && isCause( row, cause ) &&
           titles.insert( row.title ).second ) {
         result.push_back( { row.title, remedyOf( row.title ) } );
      }
   }
   return result;
}

std::string LimitIndex::remedyOf( std::string const & title ) const {
   auto const section =
      std::find_if( sections_.begin(), sections_.end(),
                    [ & ]( KnownLimit const & one ) { return one.title == title; } );
   return section == sections_.end() ? "" : withoutLinks( section->remedy );
}

LimitIndex const & limitIndex() {
   static LimitIndex const index( limitsDocument() );
   return index;
}

}  // namespace Story
