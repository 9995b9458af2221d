#include <Story/FrameTable.h>

#include <algorithm>

#include <fmt/format.h>

namespace Story {

namespace {

std::string placeOf( Chip::Copy const & copy ) {
   return copy.remoteVtep ? copy.remoteVtep->stringValue() : copy.intfId.stringValue();
}

std::string outcomeOf( Chip::Copy const & copy ) {
   std::string const verdict( nameOf( copy.verdict ) );
   return copy.rule
             ? fmt::format( "{} by unit {} entry {}", verdict, copy.rule->unit, copy.rule->id )
             : verdict;
}

// "Ethernet1 sent"; with a number for each outcome when frames differ.
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

void FrameTable::add( Chip::FrameStory const & frame ) {
   std::string const from =
      frame.tunnel ? frame.tunnel->source.stringValue() : frame.arrivalIntfId.stringValue();
   Row & row = rows_[ { from, frame.kind ? std::string( nameOf( *frame.kind ) ) : "-" } ];
   ++row.frames;
   if ( frame.dropReason ) {
      ++row.outcomes[ "dropped:" ][ std::string( nameOf( *frame.dropReason ) ) ];
   }
   for ( Chip::Copy const & copy : frame.copies ) {
      if ( copy.verdict != Chip::Verdict::Arrival ) {
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
   std::vector< std::string > lines{ fmt::format( "{:<{}}  {:<{}}  {:>6}  outcomes", "from", from,
                                                  "kind", kind, "frames" ) };
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
