// Any story of a switch goes as a second opinion says: calls, rules, requests, log lines, frames,
// and where the plug-in stops. For libFuzzer; fuzz/README.md has the command.
//
// The input chooses a switch and the moves of a random story (tests/reference/Moves.h). The story
// runs as the program runs a scenario: the agent loads the plug-in in a process of its own, so a
// stop is one more event. It is a finding only where the reference foretells none.
//
// The fuzzer cannot see the code that the other process reaches. It sees what the switch does
// instead: counters of its own for each event behind another one.
#include <array>
#include <cstdint>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <Host/Agent.h>
#include <Judgement.h>
#include <Moves.h>
#include <Pieces.h>
#include <Process/Child.h>
#include <Process/RingMemory.h>
#include <Property.h>
#include <Steps/Reader.h>
#include <Story/JsonWriter.h>
#include <Story/StopCheck.h>

#include <sanitizer/common_interface_defs.h>
#include <signal.h>
#include <unistd.h>

namespace {

using Fuzz::Pieces;

// libFuzzer takes the bytes of this section for coverage.
__attribute__( ( section( "__libfuzzer_extra_counters" ) ) )
std::array< std::uint8_t, std::size_t{ 1 } << 15U >
   counters;

// Counts each call, rule, log line, stop and verdict behind the one before it.
class Witness final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      std::visit( [ this ]( auto const & one ) { count( one ); }, event );
   }

 private:
   void count( Story::CallMade const & made ) {
      bool const isRefused = made.call.returnCode.value_or( 0 ) != 0;
      is( made.call.operation + ( isRefused ? " refused" : "" ) );
   }
   void count( Story::RuleIs const & rule ) { is( rule.rule.name ); }
   void count( Story::Logged const & logged ) { is( logged.name ); }
   void count( Story::Stopped const & stopped ) {
      is( stopped.assertion ? stopped.assertion->expression : stopped.reason );
   }
   template< typename Other > void count( Other const & ) { is( std::string( Other::kName ) ); }

   // Digits do not count: interfaces and addresses.
   void is( std::string what ) {
      std::erase_if( what, []( char c ) { return c >= '0' && c <= '9'; } );
      std::size_t const now = std::hash< std::string >()( what );
      constexpr std::size_t kOdd = 31;
      std::uint8_t & counter = counters.at( ( now + kOdd * before_ ) % counters.size() );
      counter = static_cast< std::uint8_t >( counter + ( counter < 0xff ? 1 : 0 ) );
      before_ = now;
   }

   std::size_t before_ = 0;
};

// --- The input

Moves::World worldOf( Pieces & pieces ) {
   constexpr unsigned kAmple = 64;
   Moves::World world;
   world.isCalm = pieces.yesOrNo();
   world.variant = pieces.yesOrNo() ? "class-id" : "egress-mask";
   unsigned const ingress = pieces.below( 16 );
   unsigned const egress = pieces.below( 16 );
   unsigned const classIds = pieces.below( 4 );
   unsigned const others = pieces.byte();
   if ( !world.isCalm ) {
      world.units = 1 + others % 2;
      world.hasVniRules = others % 3 == 0;
      world.ingressEntries = ingress < 8 ? kAmple : ingress - 6;
      world.egressEntries = egress < 8 ? kAmple : egress - 8;
      world.classIds = 1 + classIds;
   }
   world.movesBeforeReady = pieces.below( 12 );
   return world;
}

// The kinds that a switch can have; each move is four bytes.
std::vector< Moves::Move > movesOf( Pieces & pieces ) {
   constexpr std::size_t kMost = 24;
   constexpr unsigned kFew = 12;
   std::vector< Moves::Move > moves;
   while ( !pieces.isOver() && moves.size() < kMost ) {
      unsigned const kind = pieces.below( Moves::kKinds );
      unsigned const place = pieces.below( kFew );
      unsigned const who = pieces.below( kFew );
      unsigned const last = pieces.byte();
      moves.push_back( { kind, place, who, last % kFew, last >= 0xe0 } );
   }
   return moves;
}

// --- The run

// A stop is no finding here, and no exit either.
void beAProcess() {
   __sanitizer_set_death_callback( nullptr );
   for ( int const number : { SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGALRM } ) {
      signal( number, SIG_DFL );
   }
}

std::string documentOf( Scenario::Model const & scenario ) {
   Process::RingMemory const ring;
   Story::JsonWriter writer;
   Witness witness;
   Story::Observers both( { &writer, &witness } );
   Story::StopCheck checked( both );
   Host::AgentConfig config;
   config.scenario = "fuzzed.yaml";
   config.plugin = VORNAL_BINARY_DIR "/VornalEvpn.so";
   Process::runInChild(
      [ & ]( Story::Observer & child ) {
         beAProcess();
         Host::Agent( scenario, config, ring.bytes(), child ).run();
         _exit( EXIT_SUCCESS );
      },
      ring.bytes(), checked );
   std::ostringstream document;
   writer.write( document );
   return document.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   Pieces pieces( data, size );
   Moves::World const world = worldOf( pieces );
   std::string const text = storyOf( world, movesOf( pieces ) ).text();
   Scenario::Model const scenario = Steps::readScenarioText( text, "fuzzed.yaml" );
   Reference::Told const told = Reference::told( scenario );
   Judgement const judgement =
      judge( told, Run::in( documentOf( scenario ), requestsBefore( told ) ),
             world.isCalm ? Claim::state : Claim::history );
   Fuzz::mustHold( !judgement.isOff(), judgement.text() + "\n" + text );
   return 0;
}
