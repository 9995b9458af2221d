#include <Exploring/Findings.h>

#include <tuple>

namespace Exploring {

std::string_view nameOf( Kind kind ) {
   constexpr std::array< std::string_view, kKinds.size() > kNames{
      "stop", "difference", "hang", "unnoticed", "transient", "lasting",
   };
   return kNames.at( static_cast< std::size_t >( kind ) );
}

bool isBefore( Sequence const & a, Sequence const & b ) {
   return std::tuple( a.size(), a ) < std::tuple( b.size(), b );
}

bool isMoreTelling( Found const & a, Found const & b ) {
   return a.calls != b.calls ? a.calls > b.calls : isBefore( a.shortest, b.shortest );
}

void Findings::add( Key const & key, Found const & one ) {
   Found & found = all[ key ];
   U64 const before = found.sequences;
   if ( before == 0 || isMoreTelling( one, found ) ) {
      found = one;
   }
   found.sequences = before + one.sequences;
}

void Findings::add( Findings const & others ) {
   counts.sequences += others.counts.sequences;
   counts.standFor += others.counts.standFor;
   counts.without += others.counts.without;
   counts.frames += others.counts.frames;
   counts.unnamed += others.counts.unnamed;
   for ( auto const & [ key, found ] : others.all ) {
      add( key, found );
   }
}

}  // namespace Exploring
