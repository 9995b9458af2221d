#include <Text/Words.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace Text {

namespace {

bool areSwapped( std::string_view a, std::size_t i, std::string_view b, std::size_t j ) {
   return i > 0 && j > 0 && a[ i ] == b[ j - 1 ] && a[ i - 1 ] == b[ j ];
}

// The number of characters to insert, remove or replace, or of neighbours to swap, to turn `a` into
// `b`.
std::size_t distance( std::string_view a, std::string_view b ) {
   std::vector< std::size_t > row( b.size() + 1 );
   std::iota( row.begin(), row.end(), std::size_t{ 0 } );
   std::vector< std::size_t > above;
   std::vector< std::size_t > twoAbove;
   for ( std::size_t i = 0; i < a.size(); ++i ) {
      twoAbove = std::exchange( above, row );
      row[ 0 ] = i + 1;
      for ( std::size_t j = 0; j < b.size(); ++j ) {
         std::size_t const replaced = above[ j ] + ( a[ i ] == b[ j ] ? 0 : 1 );
         row[ j + 1 ] = std::min( { replaced, row[ j ] + 1, above[ j + 1 ] + 1 } );
         if ( areSwapped( a, i, b, j ) ) {
            row[ j + 1 ] = std::min( row[ j + 1 ], twoAbove[ j - 1 ] + 1 );
         }
      }
   }
   return row[ b.size() ];
}

}  // namespace

std::string_view nearest( std::string_view text, std::vector< std::string_view > const & known ) {
   std::string_view best;
   // A third of the characters may be wrong, or one in the shortest words.
   std::size_t least = std::max< std::size_t >( text.size() / 3, 1 ) + 1;
   for ( std::string_view const word : known ) {
      std::size_t const longer = std::max( text.size(), word.size() );
      std::size_t const shorter = std::min( text.size(), word.size() );
      // Most words differ in length alone, and a long text is not compared at all.
      std::size_t const steps = longer - shorter < least ? distance( text, word ) : least;
      if ( steps < least ) {
         least = steps;
         best = word;
      }
   }
   return best;
}

std::string listed( std::vector< std::string_view > const & words, std::string const & last ) {
   std::string text;
   for ( std::size_t n = 0; n < words.size(); ++n ) {
      bool const isLast = n + 1 == words.size();
      text += n == 0 ? "" : isLast ? ' ' + last + ' ' : ", ";
      text += words[ n ];
   }
   return text;
}

std::string knownOnes( std::vector< std::string_view > const & words ) {
   return ( words.size() == 1 ? "known is " : "known are " ) + listed( words, "and" );
}

}  // namespace Text
