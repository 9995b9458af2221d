#include <Audit/Difference.h>

#include <algorithm>
#include <stdexcept>

namespace Audit {

std::string_view nameOf( Kind kind ) {
   constexpr std::array< std::string_view, kKinds.size() > names{ "missing-rule",
                                                                  "unexpected-rule",
                                                                  "staged-only",
                                                                  "wrong-qualifier",
                                                                  "wrong-mask",
                                                                  "wrong-action",
                                                                  "wrong-priority",
                                                                  "staged-differs",
                                                                  "not-retried",
                                                                  "rule-without-record",
                                                                  "record-without-rule",
                                                                  "record-differs",
                                                                  "unneeded-request",
                                                                  "no-room",
                                                                  "queued",
                                                                  "waiting-for-class-id",
                                                                  "class-id-withdrawn",
                                                                  "left-behind" };
   return names.at( static_cast< std::size_t >( kind ) );
}

Kind kindNamed( std::string_view name ) {
   auto const found = std::find_if( kKinds.begin(), kKinds.end(),
                                    [ & ]( Kind kind ) { return nameOf( kind ) == name; } );
   if ( found == kKinds.end() ) {
      throw std::out_of_range( "no kind of difference is named '" + std::string( name ) + "'" );
   }
   return *found;
}

}  // namespace Audit
