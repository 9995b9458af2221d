#include <Expectations/AuditExpected.h>

#include <algorithm>
#include <map>

#include <fmt/format.h>

#include <Expectations/Evidence.h>
#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Story/Wording.h>

namespace Expectations {

namespace {

namespace Shape = Scenario::Shape;

using Scenario::Choices;

Choices< bool > const & verdicts() {
   static Choices< bool > const choices{
      { "audit", "Whether the rules are in sync with the published state." },
      { { "in-sync", true }, { "differences", false } }
   };
   return choices;
}

Choices< Story::DifferenceKind > const & differenceKinds() {
   static Choices< Story::DifferenceKind > const choices = [] {
      Choices< Story::DifferenceKind > kinds{
         { "kind", "A kind of difference; the last five are known ones." }, {}
      };
      for ( Story::DifferenceRow const & row : Story::differenceRows() ) {
         kinds.all.push_back( { row.name, row.kind } );
      }
      return kinds;
   }();
   return choices;
}

void readKind( Reading & reading, Value const & value, DifferencesLike & differences ) {
   differences.kind = choiceOf( reading, value, differenceKinds() );
}

Scenario::Table< DifferencesLike > const & differencesTable() {
   static Scenario::Table< DifferencesLike > const table{
      { "audit-differences", "Differences that an audit of the rules finds." },
      { { { "kind", "", Shape::of( "kind" ) }, readKind },
        { { "count", "",
            Shape::of( "count", "The number of such differences; one or more if left out." ) },
          Scenario::readNumber< DifferencesLike, &DifferencesLike::count > } }
   };
   return table;
}

std::string foundText( Audit::Report const & report ) {
   std::map< std::string_view, U32 > counts;
   for ( Story::Difference const & difference : report.differences ) {
      ++counts[ nameOf( difference.kind ) ];
   }
   std::string text;
   for ( auto const & [ kind, count ] : counts ) {
      text += fmt::format( "{}{} {}", text.empty() ? "" : ", ", count, kind );
   }
   return "it finds " + ( text.empty() ? "nothing" : text );
}

}  // namespace

std::vector< WordList > auditVocabulary() {
   return { verdicts().list(), differenceKinds().list(), differencesTable().list() };
}

std::string auditShape() {
   return Shape::anyOf( { Shape::of( "audit" ), Shape::of( "audit-differences" ) },
                        "The result of an audit of the rules at this point." );
}

// Reads a verdict, or a mapping.
std::shared_ptr< Expected const > readAudit( Reading & reading, Value const & value ) {
   if ( value.node.IsScalar() ) {
      return std::make_shared< InSync >( choiceOf( reading, value, verdicts() ).value_or( true ) );
   }
   auto const differences = std::make_shared< DifferencesLike >();
   readMapping( reading, value, differencesTable(), *differences );
   return differences;
}

std::string InSync::description() const {
   return isInSync ? "an audit finds the rules in sync" : "an audit finds differences";
}

Finding InSync::check( Evidence const & evidence ) const {
   Audit::Report const report = evidence.auditor.report();
   return { report.isInSync() == isInSync, foundText( report ) };
}

std::string DifferencesLike::description() const {
   if ( kind ) {
      return fmt::format( "an audit finds {} {}", count ? std::to_string( *count ) : "some",
                          nameOf( *kind ) );
   }
   return "an audit finds " +
          ( count ? Story::counted( *count, "difference" ) : "some differences" );
}

Finding DifferencesLike::check( Evidence const & evidence ) const {
   Audit::Report const report = evidence.auditor.report();
   auto const found =
      std::count_if( report.differences.begin(), report.differences.end(),
                     [ & ]( auto const & difference ) {
                        return kind ? difference.kind == *kind : !isKnown( difference.kind );
                     } );
   bool const isAsExpected = count ? found == std::ptrdiff_t{ *count } : found > 0;
   return { isAsExpected, foundText( report ) };
}

}  // namespace Expectations
