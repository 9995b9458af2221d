#include <Story/Difference.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace Story {

namespace {

using Kind = DifferenceKind;

constexpr auto kRows =
   std::to_array< DifferenceRow >( { { Kind::missingRule, "missing-rule", false },
                                     { Kind::unexpectedRule, "unexpected-rule", false },
                                     { Kind::stagedOnly, "staged-only", false },
                                     { Kind::wrongQualifier, "wrong-qualifier", false },
                                     { Kind::wrongMask, "wrong-mask", false },
                                     { Kind::wrongAction, "wrong-action", false },
                                     { Kind::wrongPriority, "wrong-priority", false },
                                     { Kind::stagedDiffers, "staged-differs", false },
                                     { Kind::notRetried, "not-retried", false },
                                     { Kind::ruleWithoutRecord, "rule-without-record", false },
                                     { Kind::recordWithoutRule, "record-without-rule", false },
                                     { Kind::recordDiffers, "record-differs", false },
                                     { Kind::unneededRequest, "unneeded-request", false },
                                     { Kind::noRoom, "no-room", true },
                                     { Kind::queued, "queued", true },
                                     { Kind::waitingForClassId, "waiting-for-class-id", true },
                                     { Kind::classIdWithdrawn, "class-id-withdrawn", true },
                                     { Kind::leftBehind, "left-behind", true } } );

constexpr DifferenceRow const & rowOf( Kind kind ) {
   return kRows[ static_cast< std::size_t >( kind ) ];
}
static_assert( std::all_of( kRows.begin(), kRows.end(),
                            []( DifferenceRow const & row ) {
                               return &row == &rowOf( row.kind );
                            } ),
               "the rows stand in the order of DifferenceKind" );

}  // namespace

std::span< DifferenceRow const > differenceRows() {
   return kRows;
}

std::string_view nameOf( Kind kind ) {
   return rowOf( kind ).name;
}

bool isKnown( Kind kind ) {
   return rowOf( kind ).isKnown;
}

Kind differenceKindNamed( std::string_view name ) {
   auto const * const found = std::ranges::find( kRows, name, &DifferenceRow::name );
   if ( found == kRows.end() ) {
      throw std::out_of_range( "no kind of difference is named '" + std::string( name ) + "'" );
   }
   return found->kind;
}

}  // namespace Story
