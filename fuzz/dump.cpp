// A scenario that was read is written as a text that reads as the same; and a dump of the switch
// after its steps is a scenario that leads to the same published state. For libFuzzer;
// fuzz/README.md has the command.
//
// There is no plug-in, so nothing can stop the process, and the published state is all there is.
#include <algorithm>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <CommandLine/Comparison.h>
#include <Dumping/Dumper.h>
#include <Property.h>
#include <PublishedSwitch.h>
#include <Scenario/Values.h>
#include <Scenario/Whole.h>
#include <Steps/Reader.h>

namespace {

using Fuzz::mustHold;
using Scenario::Yaml;

constexpr char const * kFile = "fuzzed.yaml";

// A dump carries out a scenario many times.
constexpr std::size_t kMostSteps = 6;
constexpr std::size_t kMostUnits = 4;
constexpr U32 kLongestDelay = 8;
constexpr U16 kMostClassIds = 8;

bool isSmall( Scenario::Model const & scenario ) {
   Scenario::Switch const & device = scenario.device;
   return scenario.steps.size() <= kMostSteps && device.units.size() <= kMostUnits &&
          device.classIds.delay <= kLongestDelay &&
          device.classIds.last - device.classIds.first < kMostClassIds;
}

std::optional< Scenario::Model > read( std::string const & text ) {
   try {
      return Steps::readScenarioText( text, kFile );
   } catch ( Scenario::ReadError const & ) {
      return std::nullopt;
   }
}

// The state after so many steps; nothing when it does not get so far.
std::optional< Story::Table > stateAfter( Scenario::Model const & scenario, std::size_t steps ) {
   try {
      Fuzz::PublishedSwitch device( scenario );
      for ( std::size_t n = 0; n < steps; ++n ) {
         device.carryOut( *scenario.steps[ n ].action, scenario.steps[ n ].line );
      }
      return device.state();
   } catch ( Story::InputError const & ) {
      return std::nullopt;
   }
}

std::optional< Story::Table > stateOf( Yaml const & document ) {
   auto const scenario = read( textOf( document ) );
   return scenario ? stateAfter( *scenario, scenario->steps.size() ) : std::nullopt;
}

Story::Node between( Story::Table const & before, Story::Table const & after ) {
   return CommandLine::differencesBetween( before, after, {} );
}

// --- What holds

// What is written has quotes where it needs them, and then it was no number without them.
bool isSame( Yaml const & before, Yaml const & now ) {
   auto const hasRightQuotes = []( bool hadQuotes, bool hasQuotes, std::string const & text ) {
      return hadQuotes == hasQuotes || ( hasQuotes && !Scenario::numberIn( text ) );
   };
   return before.kind == now.kind && before.text == now.text && before.key == now.key &&
          hasRightQuotes( before.isQuoted, now.isQuoted, now.text ) &&
          hasRightQuotes( before.isKeyQuoted, now.isKeyQuoted, now.key ) &&
          before.isInLine == now.isInLine &&
          std::equal( before.parts.begin(), before.parts.end(), now.parts.begin(), now.parts.end(),
                      isSame );
}

void checkText( std::string const & text, Scenario::Model const & scenario ) {
   Yaml const document = Scenario::yamlIn( text );
   for ( std::string const & written : { textOf( document ), pageOf( document ) } ) {
      mustHold( isSame( document, Scenario::yamlIn( written ) ),
                "a document is read back:\n" + written );
      auto const again = read( written );
      mustHold( again && again->steps.size() == scenario.steps.size(),
                "a scenario that is written is one:\n" + written );
      for ( std::size_t n = 0; n < scenario.steps.size(); ++n ) {
         mustHold( again->steps[ n ].action->description() ==
                      scenario.steps[ n ].action->description(),
                   "a step is read back:\n" + written );
      }
   }
}

void checkDump( std::string const & text, Scenario::Model const & scenario ) {
   auto const state = stateAfter( scenario, scenario.steps.size() );
   if ( !state ) {
      return;
   }
   Scenario::Whole const whole( kFile, text );
   Dumping::Dump const dump =
      Dumping::dumped( { whole.document( kFile, {} ), listOf( kFile, whole.steps() ).parts },
                       *state,
                       { [ & ]( std::size_t step ) { return stateAfter( scenario, step ); },
                         stateOf, between } );
   std::string const page = pageOf( dump.scenario );
   mustHold( dump.isSame, "a dump leads to the state:\n" + page );
   auto const again = read( page );
   mustHold( again.has_value(), "a dump is a scenario:\n" + page );
   auto const is = stateAfter( *again, again->steps.size() );
   mustHold( is && between( *state, *is ).children.empty(), "a dump leads to the state:\n" + page );
}

}  // namespace

// What is told of a key that is left out, or of feature files, is not looked at.
extern "C" int LLVMFuzzerInitialize( int *, char *** ) {
   std::cerr.rdbuf( nullptr );
   return 0;
}

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   std::string const text( data, data + size );
   auto const scenario = read( text );
   if ( !scenario ) {
      return 0;
   }
   checkText( text, *scenario );
   if ( isSmall( *scenario ) ) {
      checkDump( text, *scenario );
   }
   return 0;
}
