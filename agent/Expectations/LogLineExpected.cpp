#include <Expectations/LogLineExpected.h>

#include <algorithm>

#include <Expectations/Counts.h>
#include <Expectations/Evidence.h>
#include <Scenario/Shape.h>
#include <Scenario/Values.h>

namespace Expectations {

namespace {

namespace Shape = Scenario::Shape;

using Line = LogLineExpected;

constexpr auto readLineText = Scenario::readText< Line, &Line::text >;

Scenario::Table< Line > const & logTable() {
   static Scenario::Table< Line > const table{
      { "log", "A line that has been logged since the scenario began." },
      { { { "text", "text: MULTIHOMING_TCAM_RESOURCE_FULL",
            Shape::of( "text", "A part of the line." ) },
          readLineText },
        { { "times", "",
            Shape::of( "count", "The number of such lines; one or more if left out." ) },
          Scenario::readNumber< Line, &Line::times > } }
   };
   return table;
}

}  // namespace

std::vector< WordList > LogLineExpected::vocabulary() {
   return { logTable().list() };
}

std::string LogLineExpected::shape() {
   return Shape::anyOf( { Shape::of( "text" ), Shape::of( "log" ) },
                        "A text that a log line contains, or such a text and how often." );
}

// Reads a text alone, or a mapping.
void LogLineExpected::read( Reading & reading, Value const & value ) {
   if ( value.node.IsScalar() ) {
      readLineText( reading, value, *this );
   } else {
      readMapping( reading, value, logTable(), *this );
   }
}

std::string LogLineExpected::description() const {
   return "log line \"" + text + '"' + timesText( times );
}

Finding LogLineExpected::check( Evidence const & evidence ) const {
   auto const & lines = evidence.record.log();
   return timesFound( std::count_if( lines.begin(), lines.end(),
                                     [ & ]( std::string const & line ) {
                                        return line.find( text ) != std::string::npos;
                                     } ),
                      times );
}

}  // namespace Expectations
