#include <Expectations/TraceLineExpected.h>

#include <algorithm>

#include <fmt/format.h>

#include <Expectations/Counts.h>
#include <Expectations/Evidence.h>
#include <Scenario/Values.h>

namespace Expectations {

namespace {

using Line = TraceLineExpected;

constexpr U32 kHighestLevel = 9;
constexpr U32 kHighestCount = ~U32{ 0 };

void readLevel( Reading & reading, Value const & value, Line & line ) {
   if ( auto const level = numberOf( reading, value, 0, kHighestLevel ) ) {
      line.level = static_cast< int >( *level );
   }
}

Scenario::Table< Line > const & traceTable() {
   static Scenario::Table< Line > const table{
      "trace",
      { { { "handle", "handle: VornalEvpnSm" }, Scenario::readText< Line, &Line::handle > },
        { { "level", "" }, readLevel },
        { { "text", "text: is ready" }, Scenario::readText< Line, &Line::text > },
        { { "times", "" }, Scenario::readNumber< Line, &Line::times, 0, kHighestCount > } }
   };
   return table;
}

}  // namespace

std::vector< WordList > TraceLineExpected::vocabulary() {
   return { traceTable().list() };
}

void TraceLineExpected::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, traceTable(), *this );
   if ( level && !handle.empty() && !reading.isTraced( handle, *level ) ) {
      std::string const number = std::to_string( *level );
      reading.problem( value.line, "level " + number + " of " + handle +
                                      " is not traced here; switch it on, as in 'trace: { " +
                                      handle + ": 0-" + number + " }'" );
   }
}

std::string TraceLineExpected::description() const {
   return fmt::format( "trace line of {}{} \"{}\"{}", handle,
                       level ? fmt::format( " at level {}", *level ) : "", text,
                       timesText( times ) );
}

Finding TraceLineExpected::check( Evidence const & evidence ) const {
   auto const & lines = evidence.record.traces();
   return timesFound( std::count_if( lines.begin(), lines.end(),
                                     [ & ]( Story::Traced const & line ) {
                                        return line.handle == handle &&
                                               line.level == level.value_or( line.level ) &&
                                               line.text.find( text ) != std::string::npos;
                                     } ),
                      times );
}

}  // namespace Expectations
