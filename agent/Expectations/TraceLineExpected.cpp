#include <Expectations/TraceLineExpected.h>

#include <algorithm>

#include <fmt/format.h>

#include <Expectations/Counts.h>
#include <Expectations/Evidence.h>
#include <Scenario/Shape.h>
#include <Scenario/Values.h>

namespace Expectations {

namespace {

namespace Shape = Scenario::Shape;

using Line = TraceLineExpected;

constexpr U32 kHighestLevel = 9;

void readLevel( Reading & reading, Value const & value, Line & line ) {
   if ( auto const level = numberOf( reading, value, 0, kHighestLevel ) ) {
      line.level = static_cast< int >( *level );
   }
}

Scenario::Table< Line > const & traceTable() {
   static Scenario::Table< Line > const table{
      { "trace",
        "A line that has been traced since the scenario began. Its level must be on, see 'trace' "
        "of the scenario." },
      { { { "handle", "handle: VornalEvpnSm",
            Shape::of( "text", "The trace handle, as VornalEvpnSm." ) },
          Scenario::readText< Line, &Line::handle > },
        { { "level", "",
            Shape::number( 0, kHighestLevel, "The level; any that is on if left out." ) },
          readLevel },
        { { "text", "text: is ready", Shape::of( "text", "A part of the line." ) },
          Scenario::readText< Line, &Line::text > },
        { { "times", "",
            Shape::of( "count", "The number of such lines; one or more if left out." ) },
          Scenario::readNumber< Line, &Line::times > } }
   };
   return table;
}

}  // namespace

std::vector< WordList > TraceLineExpected::vocabulary() {
   return { traceTable().list() };
}

void TraceLineExpected::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, traceTable(), *this );
   if ( level && !handle.empty() && !reading.isTraced( handle, *level ) &&
        reading.judges( Scenario::Ground::traceLevels ) ) {
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
