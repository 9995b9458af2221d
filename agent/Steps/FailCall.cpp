#include <Steps/FailCall.h>

#include <fmt/format.h>

#include <Calls/Faults.h>
#include <Scenario/ChipOperation.h>
#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Steps/Context.h>
#include <Text/Numbers.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

using Scenario::Table;

void readLasting( Reading & reading, Value const & value, FailCall & fail ) {
   fail.isLasting = yesOrNoOf( reading, value ).value_or( false );
}

// A whole number without quotes; it can be negative.
std::optional< S32 > codeIn( YAML::Node const & node ) {
   constexpr char const * kQuoted = "!";
   return node.Tag() != kQuoted ? Text::numberIn< S32 >( node.Scalar() ) : std::nullopt;
}

void readCode( Reading & reading, Value const & value, FailCall & fail ) {
   auto const text = stringOf( reading, value );
   if ( !text ) {
      return;
   }
   fail.code = codeIn( value.node ).value_or( 0 );
   if ( fail.code == 0 ) {
      reading.problem( value.line, "code is " + Scenario::inQuotes( *text ) +
                                      "; a result code of the chip is expected, as in -1, which "
                                      "is not 0 and stands without quotes" );
   }
}

constexpr std::string_view kCode = R"({
   "type": "integer", "minimum": -2147483648, "maximum": 2147483647, "not": { "const": 0 }
})";

Table< FailCall > const & failCallTable() {
   static Table< FailCall > const table{
      { "fail-call", "A later call of the chip is not made and gives a result code." },
      { { { "operation", "", Scenario::operationShape() }, Scenario::readOperation< FailCall > },
        { { "number", "", Scenario::callNumberShape( "; the next one if left out" ) },
          Scenario::readCallNumber< FailCall > },
        { { "lasting", "",
            Shape::json( R"({ "type": "boolean" })",
                         "Whether all such calls behind it fail as well." ) },
          readLasting },
        { { "code", "code: -1", Shape::json( kCode, "The result code: negative for a failure." ) },
          readCode } }
   };
   return table;
}

}  // namespace

std::vector< WordList > FailCall::vocabulary() {
   return { failCallTable().list(), Scenario::chipOperations().list() };
}

void FailCall::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, failCallTable(), *this );
}

std::string FailCall::description() const {
   std::string const of = operation.empty() ? "" : " of " + operation;
   return isLasting
             ? fmt::format( "calls{} from number {} from now on are not made and give code {}", of,
                            number, code )
             : fmt::format( "call {}{} from now on is not made and gives code {}", number, of,
                            code );
}

void FailCall::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] {
      context.faults.faultNew( { number, code, operation, isLasting } );
   } );
}

}  // namespace Steps
