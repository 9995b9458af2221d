#include <charconv>

#include <Calls/Faults.h>
#include <Scenario/Parts.h>

namespace Scenario {

namespace {

constexpr U32 kHighestNumber = ~U32{ 0 };

Choices< std::string_view > const & operations() {
   static Choices< std::string_view > const choices = [] {
      Choices< std::string_view > all{ "chip-operation", {} };
      for ( std::string_view const name : Chip::kFallibleOperations ) {
         all.all.push_back( { name, name } );
      }
      return all;
   }();
   return choices;
}

void readOperation( Reading & reading, Value const & value, FailCall & fail ) {
   fail.operation = choiceOf( reading, value, operations() ).value_or( "" );
}

void readNumber( Reading & reading, Value const & value, FailCall & fail ) {
   fail.number = numberOf( reading, value, 1, kHighestNumber ).value_or( 1 );
}

// A whole number that can be negative, without quotes.
std::optional< S32 > codeIn( YAML::Node const & node ) {
   constexpr char const * kQuoted = "!";
   std::string const & text = node.Scalar();
   S32 code = 0;
   auto const [ end, error ] = std::from_chars( text.data(), text.data() + text.size(), code );
   bool const isWhole = error == std::errc() && end == text.data() + text.size();
   return isWhole && node.Tag() != kQuoted ? std::optional( code ) : std::nullopt;
}

void readCode( Reading & reading, Value const & value, FailCall & fail ) {
   auto const text = stringOf( reading, value );
   if ( !text ) {
      return;
   }
   fail.code = codeIn( value.node ).value_or( 0 );
   if ( fail.code == 0 ) {
      reading.problem( value.line, "code is " + inQuotes( *text ) +
                                      "; a result code of the chip is expected, as in -1, which "
                                      "is not 0 and stands without quotes" );
   }
}

Table< FailCall > const & failCallTable() {
   static Table< FailCall > const table{ "fail-call",
                                         { { { "operation", "operation: installEntry" },
                                             readOperation },
                                           { { "number", "" }, readNumber },
                                           { { "code", "code: -1" }, readCode } } };
   return table;
}

}  // namespace

void readFailCall( Reading & reading, Value const & value, FailCall & fail ) {
   readMapping( reading, value, failCallTable(), fail );
}

std::vector< WordList > failCallVocabulary() {
   return { failCallTable().list(), operations().list() };
}

}  // namespace Scenario
