#include <Exploring/Findings.h>

#include <array>
#include <tuple>

namespace Exploring {

std::string_view nameOf( Kind kind ) {
   constexpr std::array< std::string_view, 4 > kNames{ "stop", "difference", "hang", "unnoticed" };
   return kNames.at( static_cast< std::size_t >( kind ) );
}

bool isBefore( Sequence const & a, Sequence const & b ) {
   return std::tuple( a.size(), a ) < std::tuple( b.size(), b );
}

void Findings::add( Key const & key, Sequence const & sequence, U64 weight ) {
   Found & found = all[ key ];
   if ( found.sequences == 0 || isBefore( sequence, found.shortest ) ) {
      found.shortest = sequence;
   }
   found.sequences += weight;
}

void Findings::add( Findings const & others ) {
   counts.sequences += others.counts.sequences;
   counts.standFor += others.counts.standFor;
   counts.without += others.counts.without;
   counts.unnamed += others.counts.unnamed;
   for ( auto const & [ key, found ] : others.all ) {
      add( key, found.shortest, found.sequences );
   }
}

}  // namespace Exploring
