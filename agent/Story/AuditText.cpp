#include <Story/AuditText.h>

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Snapshot/RuleText.h>
#include <Story/Wording.h>

namespace Story {

namespace {

// "unit 0, ingress group 157, entry 3, "Mark or drop ...", EgressMask", without the absent parts.
std::string placeOf( Story::Difference const & difference ) {
   std::vector< std::string > parts;
   if ( difference.unit ) {
      parts.push_back( fmt::format( "unit {}", *difference.unit ) );
   }
   if ( difference.group ) {
      parts.push_back( Chip::groupText( *difference.group ) );
   }
   if ( difference.entry != 0 ) {
      parts.push_back( fmt::format( "entry {}", difference.entry ) );
   }
   if ( !difference.rule.empty() ) {
      parts.push_back( fmt::format( "\"{}\"", difference.rule ) );
   }
   if ( !difference.field.empty() ) {
      parts.push_back( difference.field );
   }
   return fmt::format( "{}", fmt::join( parts, ", " ) );
}

std::string verdictOf( Audited const & audited, Style const & style ) {
   std::size_t const faults = faultsIn( audited );
   std::size_t const known = audited.differences.size() - faults;
   std::string const unprotected = unprotectedText( audited );
   std::string const counts =
      fmt::format( "{}, {} in the chip{}{}", counted( audited.rules, "expected rule" ),
                   audited.entries, unprotected.empty() ? "" : "; ",
                   Text::printable( unprotected ) );
   if ( faults != 0 ) {
      return style.bad( fmt::format( "audit: {}", counted( faults, "difference" ) ) ) +
             fmt::format( ", {} known; {}", known, counts );
   }
   std::string const inSync = "audit: in sync";
   return ( unprotected.empty() ? style.good( inSync ) : style.bold( inSync ) ) +
          ( known == 0 ? "" : fmt::format( ", {} known", known ) ) + "; " + counts;
}

}  // namespace

std::size_t faultsIn( Audited const & audited ) {
   return static_cast< std::size_t >(
      std::count_if( audited.differences.begin(), audited.differences.end(),
                     []( auto const & one ) { return !Story::isKnown( one.kind ); } ) );
}

std::string unprotectedText( Audited const & audited ) {
   return audited.unprotected.empty()
             ? ""
             : fmt::format( "{} unprotected: {}", counted( audited.unprotected.size(), "VTEP" ),
                            fmt::join( audited.unprotected, ", " ) );
}

std::vector< std::string > linesOf( Audited const & audited, Style const & style ) {
   std::vector< std::string > lines{ verdictOf( audited, style ) };
   for ( Story::Difference const & difference : audited.differences ) {
      std::string const kind( Story::nameOf( difference.kind ) );
      lines.push_back( fmt::format( "   {}: {}",
                                    Story::isKnown( difference.kind ) ? kind : style.bad( kind ),
                                    Text::printable( placeOf( difference ) ) ) );
      lines.push_back( Text::printable(
         fmt::format( "      is {}; should be {}", difference.actual, difference.expected ) ) );
      lines.push_back( Text::printable( "      " + difference.because ) );
   }
   return lines;
}

}  // namespace Story
