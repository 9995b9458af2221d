#include <Expectations/LogLineExpected.h>

#include <algorithm>

#include <Expectations/Counts.h>
#include <Expectations/Evidence.h>
#include <Scenario/Values.h>

namespace Expectations {

namespace {

using Line = LogLineExpected;

constexpr U32 kHighestCount = ~U32{ 0 };
constexpr auto readLineText = Scenario::readText< Line, &Line::text >;

Scenario::Table< Line > const & logTable() {
   static Scenario::Table< Line > const table{
      "log",
      { { { "text", "text: MULTIHOMING_TCAM_RESOURCE_FULL" }, readLineText },
        { { "times", "" }, Scenario::readNumber< Line, &Line::times, 0, kHighestCount > } }
   };
   return table;
}

}  // namespace

std::vector< WordList > LogLineExpected::vocabulary() {
   return { logTable().list() };
}

// A text alone, or a mapping.
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
