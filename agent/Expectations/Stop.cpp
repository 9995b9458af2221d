#include <Expectations/Stop.h>

#include <fmt/format.h>

#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Story/Observer.h>

namespace Expectations {

namespace {

namespace Shape = Scenario::Shape;

// --- Words

constexpr std::string_view kMore = R"({
   "minProperties": 1,
   "not": { "required": [ "assertion", "exception" ] },
   "dependencies": { "assertion": [ "function" ], "function": [ "assertion" ] }
})";

constexpr std::string_view kFunction = R"({
   "type": [ "string", "number", "boolean" ], "minLength": 1, "pattern": "^[^( ]+$"
})";

void readFunction( Reading & reading, Value const & value, Stop & stop ) {
   stop.function = stringOf( reading, value ).value_or( "" );
   if ( stop.function.find_first_of( "( " ) != std::string::npos ) {
      reading.problem( value.line, "function is " + Scenario::inQuotes( stop.function ) +
                                      "; its name alone is expected, as in Vornal::Sm::add, "
                                      "without result and parameters" );
   }
}

Scenario::Table< Stop > const & stopTable() {
   static Scenario::Table< Stop > const table{
      { "stop", "The next step stops the process of the plug-in. It is the last step.", kMore },
      { { { "assertion", "", Shape::of( "text", "The expression of the assertion." ) },
          Scenario::readText< Stop, &Stop::assertion > },
        { { "function", "",
            Shape::json( kFunction,
                         "The function of the assertion: its qualified name or the end of it, "
                         "without parameters." ) },
          readFunction },
        { { "exception", "",
            Shape::of( "text",
                       "The text of the exception that stops the process, without an "
                       "assertion." ) },
          Scenario::readText< Stop, &Stop::exception > } }
   };
   return table;
}

// What is wrong with the words that stand together; empty: nothing.
std::string problemOf( Value const & stop ) {
   auto const has = [ & ]( char const * word ) { return bool( stop.node[ word ] ); };
   if ( has( "assertion" ) && has( "exception" ) ) {
      return "stop has an assertion and an exception; keep the one that stops the process";
   }
   if ( has( "function" ) && !has( "assertion" ) ) {
      return "stop has a function without its assertion; add 'assertion', the expression";
   }
   return has( "assertion" ) && !has( "function" )
             ? "stop has an assertion without its function; add 'function', as in 'function: "
               "Vornal::Sm::add'"
             : "";
}

}  // namespace

std::vector< WordList > Stop::vocabulary() {
   return { stopTable().list() };
}

void Stop::read( Reading & reading, Value const & value ) {
   if ( !isFilled( reading, value, stopTable().list() ) ) {
      return;
   }
   readMapping( reading, value, stopTable(), *this );
   if ( std::string const problem = value.node.IsMap() ? problemOf( value ) : "";
        !problem.empty() ) {
      reading.problem( value.line, problem );
   }
}

// --- The expectation

std::string Stop::description() const {
   return assertion.empty()
             ? fmt::format( "the next step to stop the process by the exception {}", exception )
             : fmt::format( "the next step to stop the process at assertion {} in {}", assertion,
                            function );
}

void Stop::tell( Evidence const &, std::string const & place, Story::Observer & observer ) const {
   observer.onEvent( Story::StopExpected{ description(), place,
                                          assertion.empty() ? exception : assertion, function } );
}

}  // namespace Expectations
