// The plug-in's time beside that of the very calls that it makes, made again without it
// (support/CallList.h): bring-up, churn and removal of VTEPs that share ports
// (support/SharedLeaf.h).
//
// Each round times the three phases of a switch without a machine, of one with a machine, and of
// the calls made again, one behind the other. A row's counters are medians over the rounds:
//
//    PHASE.calls    calls to the hardware
//    PHASE.state    ms that publishing the state takes, without a machine
//    PHASE.plugin   ms with the machine, publishing included
//    PHASE.replay   ms of the calls alone
//    PHASE.ratio    plugin / replay, with its quartiles
//    PHASE.own      ( plugin - state ) / replay, with its quartiles: without what other agents
//                   publish
//
//    bytes.plugin   what the plug-in holds after bring-up: neither published state nor chip
//    bytes.chip     what the chip holds then
//
// `slow` is the same where each call takes 26 microseconds, a measured figure for a bulk write to
// hardware.
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <support/CallList.h>
#include <support/Heap.h>
#include <support/Rounds.h>
#include <support/SharedLeaf.h>
#include <support/ShimInUse.h>

namespace Bench {
namespace {

constexpr std::array kPhases{ &SharedLeaf::bringUp, &SharedLeaf::churn, &SharedLeaf::remove };
constexpr std::array< char const *, kPhases.size() > kNames{ "bring_up", "churn", "removal" };

template< typename T > using Phases = std::array< T, kPhases.size() >;

// A chip whose every call takes 26 microseconds.
class SlowChip final : public Chip::CallObserver {
 public:
   void callMade( Chip::HardwareCall const & ) override {
      using Clock = std::chrono::steady_clock;
      auto const end = Clock::now() + std::chrono::microseconds( 26 );
      while ( Clock::now() < end ) {
      }
   }
};

// Notes calls in the list of the phase that they are made in.
class Recorder final : public Chip::CallObserver {
 public:
   void callMade( Chip::HardwareCall const & call ) override { lists.at( phase ).callMade( call ); }

   std::size_t phase = 0;
   Phases< CallList > lists;
};

std::unique_ptr< Recorder > callsOf( Shape const & shape ) {
   auto recorder = std::make_unique< Recorder >();
   SharedLeaf leaf( shape, recorder.get() );
   ShimInUse const shim( leaf.board, recorder.get() );
   leaf.machineNew();
   for ( recorder->phase = 0; recorder->phase < kPhases.size(); ++recorder->phase ) {
      ( leaf.*kPhases.at( recorder->phase ) )();
   }
   return recorder;
}

// What the phases took, and what the first one left in memory.
struct Taken {
   Phases< double > times{};
   double bytes = 0;
};

template< typename Work > Taken takenBy( Work work ) {
   Taken taken;
   double const before = bytesInUse();
   for ( std::size_t phase = 0; phase < kPhases.size(); ++phase ) {
      taken.times.at( phase ) = timeOf( [ & ] { work( phase ); } );
      taken.bytes = phase == 0 ? bytesInUse() - before : taken.bytes;
   }
   return taken;
}

Taken takenBySwitch( Shape const & shape, bool hasMachine, Chip::CallObserver * observer ) {
   SharedLeaf leaf( shape, observer );
   ShimInUse const shim( leaf.board, observer );
   if ( hasMachine ) {
      leaf.machineNew();
   }
   return takenBy( [ & ]( std::size_t phase ) { ( leaf.*kPhases.at( phase ) )(); } );
}

Taken takenByCalls( Shape const & shape, Phases< CallList > const & lists,
                    Chip::CallObserver * observer ) {
   Kiv::ActivityManager activity;
   Kiv::ActivityLockAnchor const locked( activity );
   Chip::Board board( SharedLeaf::boardOf( shape ), observer );
   ShimInUse const shim( board, observer );
   return takenBy( [ & ]( std::size_t phase ) { lists.at( phase ).makeOn( board ); } );
}

// What one phase took.
struct PhaseRounds {
   Rounds state;
   Rounds plugin;
   Rounds replay;
   Rounds ratio;
   Rounds own;

   void add( double stateTime, double pluginTime, double replayTime ) {
      state.add( stateTime );
      plugin.add( pluginTime );
      replay.add( replayTime );
      ratio.add( pluginTime / replayTime );
      own.add( ( pluginTime - stateTime ) / replayTime );
   }

   void report( benchmark::State & bench, std::string const & phase, std::size_t calls ) const {
      bench.counters[ phase + ".calls" ] = static_cast< double >( calls );
      bench.counters[ phase + ".state" ] = state.median();
      bench.counters[ phase + ".plugin" ] = plugin.median();
      bench.counters[ phase + ".replay" ] = replay.median();
      ratio.report( bench, phase + ".ratio" );
      own.report( bench, phase + ".own" );
   }
};

void measure( benchmark::State & bench, Chip::CallObserver * observer ) {
   Shape const shape{ static_cast< Variant >( bench.range( 0 ) ),
                      static_cast< U32 >( bench.range( 1 ) ),
                      static_cast< U16 >( bench.range( 2 ) ),
                      static_cast< U32 >( bench.range( 3 ) ) };
   auto const recorded = callsOf( shape );
   Phases< PhaseRounds > rounds;
   Rounds pluginBytes;
   Rounds chipBytes;
   for ( auto _ : bench ) {
      Taken const state = takenBySwitch( shape, false, nullptr );
      Taken const plugin = takenBySwitch( shape, true, observer );
      Taken const replay = takenByCalls( shape, recorded->lists, observer );
      pluginBytes.add( plugin.bytes - state.bytes - replay.bytes );
      chipBytes.add( replay.bytes );
      for ( std::size_t phase = 0; phase < kPhases.size(); ++phase ) {
         rounds.at( phase ).add( state.times.at( phase ), plugin.times.at( phase ),
                                 replay.times.at( phase ) );
      }
   }
   for ( std::size_t phase = 0; phase < kPhases.size(); ++phase ) {
      rounds.at( phase ).report( bench, kNames.at( phase ), recorded->lists.at( phase ).size() );
   }
   bench.counters[ "bytes.plugin" ] = pluginBytes.median();
   bench.counters[ "bytes.chip" ] = chipBytes.median();
}

void programming( benchmark::State & bench ) {
   measure( bench, nullptr );
}
void slow( benchmark::State & bench ) {
   SlowChip chip;
   measure( bench, &chip );
}

// Both variants on 1 and 4 units with 4 and 64 ports; the more there is to do, the fewer rounds.
void shapes( benchmark::internal::Benchmark * benchmark, std::vector< S64 > const & vteps ) {
   benchmark->ArgNames( { "variant", "vteps", "units", "ports" } );
   benchmark->ArgsProduct(
      { { static_cast< S64 >( Variant::EgressMask ), static_cast< S64 >( Variant::I2EClassId ) },
        vteps,
        { 1, 4 },
        { 4, 64 } } );
   benchmark->Unit( benchmark::kMillisecond );
}

BENCHMARK( programming )->Apply( []( auto * one ) {
                           shapes( one, { 16, 256 } );
                        } ) -> Iterations( 15 );
BENCHMARK( programming )->Apply( []( auto * one ) { shapes( one, { 4096 } ); } ) -> Iterations( 5 );
BENCHMARK( programming )
   ->Apply( []( auto * one ) { shapes( one, { 16384 } ); } ) -> Iterations( 3 );
BENCHMARK( slow )->Apply( []( auto * one ) { shapes( one, { 16 } ); } ) -> Iterations( 3 );

}  // namespace
}  // namespace Bench
