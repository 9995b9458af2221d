#include <Record/Comparison.h>

#include <tuple>

#include <fmt/format.h>

#include <Record/Ends.h>
#include <SoftSdk/PortBitmap.h>
#include <Story/Wording.h>

#include <fmt/ranges.h>

namespace Record {

namespace {

using namespace Story;

// The interrupted end of a run says nothing about it.
bool isCompared( Event const & event ) {
   return std::visit(
      []< typename What >( What const & ) {
         return std::is_same_v< What, CallMade > || std::is_same_v< What, Logged > ||
                std::is_same_v< What, PublishedChange > || std::is_same_v< What, PluginPass > ||
                std::is_same_v< What, StepBegins > || std::is_same_v< What, StepEnds > ||
                std::is_same_v< What, RunEnds > || std::is_same_v< What, Stopped > ||
                std::is_same_v< What, BadInput >;
      },
      event );
}

// --- Alike, for two events of one kind

bool isAlike( CallMade const & a, CallMade const & b ) {
   auto const parts = []( Chip::HardwareCall const & call ) {
      return std::tie( call.operation, call.unit, call.entry, call.values, call.returnCode );
   };
   return parts( a.call ) == parts( b.call );
}
bool isAlike( Logged const & a, Logged const & b ) {
   return a.name == b.name && a.line == b.line;
}
bool isAlike( PublishedChange const & a, PublishedChange const & b ) {
   auto const parts = []( PublishedChange const & change ) {
      return std::tie( change.path, change.attribute, change.key, change.from, change.to );
   };
   return parts( a ) == parts( b );
}
bool isAlike( PluginPass const & a, PluginPass const & b ) {
   return a.state == b.state && a.reason == b.reason;
}
bool isAlike( StepBegins const & a, StepBegins const & b ) {
   return a.number == b.number;
}
bool isAlike( StepEnds const & a, StepEnds const & b ) {
   return a.number == b.number;
}
bool isAlike( Stopped const & a, Stopped const & b ) {
   if ( !a.assertion || !b.assertion ) {
      return !a.assertion && !b.assertion && a.isOverTime == b.isOverTime && a.reason == b.reason;
   }
   return a.assertion->function == b.assertion->function &&
          a.assertion->expression == b.assertion->expression;
}
// Two ends, or two events that are not compared.
template< typename What > bool isAlike( What const &, What const & ) {
   return true;
}

bool isAlike( Event const & a, Event const & b ) {
   return a.index() == b.index() &&
          std::visit( [ & ]< typename What >(
                         What const & what ) { return isAlike( what, std::get< What >( b ) ); },
                      a );
}

// --- Words

std::string textOf( Chip::NamedValue const & named ) {
   return named.name + " " +
          std::visit( Overloaded{ []( U32 number ) { return std::to_string( number ); },
                                  []( std::string const & text ) { return '"' + text + '"'; },
                                  []( Brum::PerUnitBitmap const & ports ) {
                                     return fmt::format( "{}", Chip::portsOf( ports ) );
                                  } },
                      named.value );
}

std::string textOf( CallMade const & made ) {
   std::string text =
      fmt::format( "{}: unit {}, entry {}", made.call.operation, made.call.unit, made.call.entry );
   for ( Chip::NamedValue const & value : made.call.values ) {
      text += ", " + textOf( value );
   }
   return made.call.returnCode ? fmt::format( "{}; returns {}", text, *made.call.returnCode )
                               : text;
}

std::string textOf( Stopped const & stopped ) {
   return stopped.assertion
             ? fmt::format( "the process stops: assertion {} in {}", stopped.assertion->expression,
                            stopped.assertion->function )
             : stopped.words();
}

}  // namespace

std::string wordsOf( Event const & event ) {
   return std::visit( Overloaded{
                         []( CallMade const & made ) { return textOf( made ); },
                         []( Stopped const & stopped ) { return textOf( stopped ); },
                         []( Logged const & logged ) { return logged.words(); },
                         []( PublishedChange const & change ) { return change.words(); },
                         []( PluginPass const & pass ) { return pass.words(); },
                         []( StepBegins const & step ) { return nameOf( step ) + " begins"; },
                         []( StepEnds const & ) { return std::string( "the step ends" ); },
                         []( RunEnds const & ) { return std::string( "the run ends" ); },
                         []( BadInput const & input ) { return "the run fails: " + input.text; },
                         []( auto const & other ) {
                            return std::string( std::remove_cvref_t< decltype( other ) >::kName );
                         } },
                      event );
}

std::optional< Event > Comparison::nextExpected() {
   auto expected = reader_.nextEvent();
   while ( expected && !isCompared( *expected ) ) {
      if ( auto const * const loaded = std::get_if< PluginLoaded >( &*expected ) ) {
         recordedPlugin_ = loaded->file;
      }
      expected = reader_.nextEvent();
   }
   return expected;
}

void Comparison::onEvent( Event const & event ) {
   if ( !isCompared( event ) ) {
      return;
   }
   auto expected = nextExpected();
   if ( !expected ) {
      result_ = Result::cut;
      throw Over();
   }
   if ( !isAlike( *expected, event ) ) {
      result_ = Result::different;
      expected_ = std::move( *expected );
      came_ = event;
      throw Over();
   }
   note( event );
   if ( isEnd( event ) ) {
      result_ = Result::same;
      throw Over();
   }
}

void Comparison::note( Event const & event ) {
   ++eventsAlike_;
   if ( auto const * const step = std::get_if< StepBegins >( &event ) ) {
      step_ = *step;
   } else if ( auto const * const change = std::get_if< PublishedChange >( &event ) ) {
      published_ = *change;
   }
}

}  // namespace Record
