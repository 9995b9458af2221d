#include <Story/FrameTable.h>

#include <algorithm>

#include <fmt/format.h>

namespace Story {

namespace {

std::string placeOf( FrameCopy const & copy ) {
   return copy.vtep.empty() ? copy.intf : copy.vtep;
}

std::string outcomeOf( FrameCopy const & copy ) {
   return copy.rule
             ? fmt::format( "{} by unit {} entry {}", copy.verdict, copy.rule->unit, copy.rule->id )
             : copy.verdict;
}

// "Ethernet1 sent", or with the number of each where frames fared differently.
std::string textOf( std::string const & place, std::map< std::string, U64 > const & outcomes,
                    U64 frames ) {
   std::string text = place;
   for ( auto const & [ outcome, count ] : outcomes ) {
      text += text == place ? " " : ", ";
      text += count == frames ? outcome : fmt::format( "{} {}", count, outcome );
   }
   return text;
}

}  // namespace

void FrameTable::add( FrameForwarded const & frame ) {
   std::string const from = frame.tunnel ? frame.tunnel->source : frame.arrival;
   Row & row = rows_[ { from, frame.kind.empty() ? "-" : frame.kind } ];
   ++row.frames;
   if ( !frame.dropReason.empty() ) {
      ++row.outcomes[ "dropped:" ][ frame.dropReason ];
   }
   for ( FrameCopy const & copy : frame.copies ) {
      if ( copy.verdict != "arrival" ) {
         ++row.outcomes[ placeOf( copy ) ][ outcomeOf( copy ) ];
      }
   }
}

std::vector< std::string > FrameTable::lines() const {
   std::size_t from = 4;
   std::size_t kind = 4;
   for ( auto const & [ key, row ] : rows_ ) {
      from = std::max( from, key.from.size() );
      kind = std::max( kind, key.kind.size() );
   }
   std::vector< std::string > lines{ fmt::format( "{:<{}}  {:<{}}  {:>6}  what became of them",
                                                  "from", from, "kind", kind, "frames" ) };
   for ( auto const & [ key, row ] : rows_ ) {
      std::string outcomes;
      for ( auto const & [ place, counts ] : row.outcomes ) {
         outcomes += ( outcomes.empty() ? "" : "; " ) + textOf( place, counts, row.frames );
      }
      lines.push_back( fmt::format( "{:<{}}  {:<{}}  {:>6}  {}", key.from, from, key.kind, kind,
                                    row.frames, outcomes.empty() ? "nowhere to go" : outcomes ) );
   }
   return lines;
}

}  // namespace Story
