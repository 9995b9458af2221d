#include <Story/FrameTotals.h>

#include <fmt/format.h>

namespace Story {

namespace {

std::string listed( std::map< std::string, U64 > const & counts ) {
   std::string text;
   for ( auto const & [ name, count ] : counts ) {
      text += fmt::format( "{}{} {}", text.empty() ? "" : ", ", count, name );
   }
   return text;
}

}  // namespace

void FrameTotals::add( Chip::FrameStory const & frame ) {
   ++frames;
   if ( frame.dropReason ) {
      ++drops[ std::string( nameOf( *frame.dropReason ) ) ];
   }
   for ( Chip::Copy const & copy : frame.copies ) {
      if ( copy.verdict != Chip::Verdict::Arrival ) {
         ++copies[ std::string( nameOf( copy.verdict ) ) ];
      }
   }
}

std::string FrameTotals::dropsText() const {
   U64 dropped = 0;
   for ( auto const & [ reason, count ] : drops ) {
      dropped += count;
   }
   return dropped == 0 ? "none dropped"
                       : fmt::format( "{} dropped ({})", dropped, listed( drops ) );
}

std::string FrameTotals::copiesText() const {
   return copies.empty() ? "no copies" : "copies " + listed( copies );
}

}  // namespace Story
