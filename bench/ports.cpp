// Resolving the ports shared with a VTEP: getSharedESPortInfo for 1, 16 and 352 ports of a unit, on
// physical interfaces of their own and as members of one port channel.
//
// `per_port` is the time for one port; it should not grow from 16 to 352 ports. `allocations`
// counts the memory requests of one call: one for each time a list outgrows its room, not one a
// port.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <new>

#include <VornalEvpnSm/EgressMask/EvpnMultihomingLocalBiasWithEgressMaskSm.h>
#include <support/SwitchState.h>

namespace {

std::size_t allocations = 0;

}  // namespace

// Counts every memory request of this program. Not inlined: g++ 12 then sees a malloc meet a
// delete.
[[gnu::noinline]] void * operator new( std::size_t size ) {
   ++allocations;
   if ( void * const memory = std::malloc( size ) ) {
      return memory;
   }
   throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete( void * memory ) noexcept {
   std::free( memory );
}
[[gnu::noinline]] void operator delete( void * memory, std::size_t ) noexcept {
   std::free( memory );
}

namespace {

constexpr char const * kVtep = "10.0.0.2";

// A switch whose `ports` interfaces are shared with one VTEP.
class Switch : public Support::SwitchState {
 public:
   Switch( U16 ports, bool onPortChannel )
         : SwitchState( Chip::BoardConfig{ { { .number = 0 } } } ) {
      Shim::sdk_ = &board.sdk();
      std::string const lag = "Port-Channel1";
      for ( U16 port = 0; port < ports; ++port ) {
         std::string const name = "Ethernet" + std::to_string( port + 1 );
         interfaceIs( name, 0, port );
         if ( onPortChannel ) {
            memberIs( lag, name );
         } else {
            segmentIs( name, { kVtep } );
         }
      }
      if ( onPortChannel ) {
         segmentIs( lag, { kVtep } );
      }
      activity.turnNew( [ this ] {
         machine_ = Vornal::evpnMultihomingLocalBiasWithEgressMaskSmFactory(
            vcsd, dir, vpIndexStatus, evpnStatus, vtiStatusDir,
            board.entryManager( Vornal::kIfpLocalBiasGroup ), activity.clock(), lagConfig,
            lagMapping );
      } );
      activity.run();
   }

   Vornal::EvpnMultihomingLocalBiasSm & machine() { return *machine_; }

 private:
   Quelm::Ptr< Vornal::EvpnMultihomingLocalBiasSm > machine_;
};

void sharedPorts( benchmark::State & state, bool onPortChannel ) {
   auto const ports = static_cast< U16 >( state.range( 0 ) );
   Switch leaf( ports, onPortChannel );
   Pelk::IpGenAddr const vtep = Support::ip( kVtep );
   if ( leaf.machine().getSharedESPortInfo( 0, vtep ).sharedPortList().ports() != ports ) {
      state.SkipWithError( "not every port was resolved" );
   }
   allocations = 0;
   for ( auto _ : state ) {
      benchmark::DoNotOptimize( leaf.machine().getSharedESPortInfo( 0, vtep ) );
   }
   auto const calls = static_cast< double >( state.iterations() );
   state.counters[ "allocations" ] = static_cast< double >( allocations ) / calls;
   state.counters[ "per_port" ] =
      benchmark::Counter( calls * ports,
                          benchmark::Counter::kIsRate | benchmark::Counter::kInvert );
}

void physicalInterfaces( benchmark::State & state ) {
   sharedPorts( state, false );
}

void portChannel( benchmark::State & state ) {
   sharedPorts( state, true );
}

BENCHMARK( physicalInterfaces )->Arg( 1 )->Arg( 16 )->Arg( 352 );
BENCHMARK( portChannel )->Arg( 1 )->Arg( 16 )->Arg( 352 );

}  // namespace
