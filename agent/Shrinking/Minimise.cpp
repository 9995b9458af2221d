#include <Shrinking/Minimise.h>

#include <algorithm>
#include <numeric>

namespace Shrinking {

namespace {

Kept allOf( std::size_t count ) {
   Kept all( count );
   std::iota( all.begin(), all.end(), std::size_t{ 0 } );
   return all;
}

// Without the `size` elements in front of `end`, or all of them if there are fewer.
Kept without( Kept const & kept, std::size_t end, std::size_t size ) {
   auto const begin = static_cast< std::ptrdiff_t >( end - std::min( size, end ) );
   Kept less( kept.begin(), kept.begin() + begin );
   less.insert( less.end(), kept.begin() + static_cast< std::ptrdiff_t >( end ), kept.end() );
   return less;
}

// Tries to leave each chunk of that size out, the last one first. Whether any could be.
bool leaveOut( std::size_t size, Kept & kept, FirstThatDoes const & firstThatDoes ) {
   std::size_t const before = kept.size();
   std::size_t end = kept.size();
   while ( end > 0 ) {
      std::vector< Kept > candidates;
      for ( std::size_t last = end; last > 0; last -= std::min( size, last ) ) {
         candidates.push_back( without( kept, last, size ) );
      }
      auto const found = firstThatDoes( candidates );
      if ( !found ) {
         break;
      }
      std::size_t const last = end - *found * size;
      kept = candidates[ *found ];
      end = last - std::min( size, last );
   }
   return kept.size() < before;
}

}  // namespace

Kept minimised( std::size_t count, FirstThatDoes const & firstThatDoes ) {
   Kept kept = allOf( count );
   for ( std::size_t size = count; size > 0; size /= 2 ) {
      while ( leaveOut( size, kept, firstThatDoes ) && size == 1 ) {
      }
   }
   return kept;
}

Kept withoutPairs( std::size_t count, FirstThatDoes const & firstThatDoes ) {
   Kept kept = allOf( count );
   while ( true ) {
      std::vector< Kept > candidates;
      for ( std::size_t second = kept.size(); second > 1; --second ) {
         for ( std::size_t first = second - 1; first > 0; --first ) {
            candidates.push_back( without( without( kept, second, 1 ), first, 1 ) );
         }
      }
      auto const found = firstThatDoes( candidates );
      if ( !found ) {
         return kept;
      }
      kept = candidates[ *found ];
   }
}

}  // namespace Shrinking
