#include <Audit/Comparison.h>

#include <algorithm>
#include <tuple>

#include <Audit/SharedSegments.h>

namespace Audit {

namespace {

// Rules keep a class id after its grant has ended. Only the plug-in's record still tells which id
// it was.
void fillInRecordedClassIds( Records const & records, WantedRules & wanted ) {
   for ( auto & [ what, rule ] : wanted ) {
      auto const * const recorded = findIn( records.classIds, what.vtep );
      if ( rule.isWithoutClassId && recorded && recorded->isValid() ) {
         classIdIs( what, *recorded, rule.content );
      }
   }
}

// With the reason that holds for the first missing rule.
std::map< Pelk::IpGenAddr, std::string > vtepsWithoutARule( Sides const & sides ) {
   std::map< Pelk::IpGenAddr, std::string > vteps;
   for ( auto const & [ what, rule ] : sides.wanted ) {
      bool const isOfVtep = what.purpose == Purpose::vtep || what.purpose == Purpose::egressDrop;
      if ( isOfVtep && !sides.matched.rules.contains( what ) ) {
         Absence const absence = whyAbsent( sides, what );
         vteps.try_emplace( what.vtep, absence.reason.empty()
                                          ? std::string( nameOf( absence.kind ) )
                                          : absence.reason );
      }
   }
   return vteps;
}

std::vector< RuleFor > rulesWithoutRoom( Sides const & sides ) {
   std::vector< RuleFor > result;
   for ( auto const & [ what, rule ] : sides.wanted ) {
      if ( !sides.matched.rules.contains( what ) ) {
         DifferenceKind const kind = whyAbsent( sides, what ).kind;
         if ( isForLackOfRoom( kind ) || kind == DifferenceKind::queued ) {
            result.push_back( what );
         }
      }
   }
   return result;
}

}  // namespace

Difference differenceFor( RuleFor const & what, DifferenceKind kind, std::string rule ) {
   Difference difference;
   difference.kind = kind;
   difference.unit = what.unit;
   difference.group = what.group();
   difference.rule = std::move( rule );
   return difference;
}

Report compare( State const & state, Records const & records, Chip::Units const & units ) {
   WantedRules wanted = wantedRules( state );
   fillInRecordedClassIds( records, wanted );
   Matched const matched = match( wanted, records, units );
   Sides const sides{ state, records, units, wanted, matched, vtepNamesIn( state ) };
   Report report;
   report.rules = static_cast< U32 >( wanted.size() );
   report.entries = static_cast< U32 >( matched.rules.size() + matched.others.size() );
   report.unprotected = vtepsWithoutARule( sides );
   report.withoutRoom = rulesWithoutRoom( sides );
   compareRules( sides, report.differences );
   compareRecords( sides, report.differences );
   std::stable_sort( report.differences.begin(), report.differences.end(),
                     []( Difference const & a, Difference const & b ) {
                        return std::tie( a.unit, a.group, a.entry ) <
                               std::tie( b.unit, b.group, b.entry );
                     } );
   return report;
}

}  // namespace Audit
