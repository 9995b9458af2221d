// Many remote VTEPs on the class-id variant: bring-up and complete removal of N VTEPs that share 16
// port channels, whose members are on 4 units, with the allocator granting what is asked for.
//
// Both should take twice as long for twice as many VTEPs (Time, and `per_vtep`), and so should the
// memory that is held when all are programmed (`bytes_per_vtep`).
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <support/SwitchState.h>

#include <Peers/ClassIdAllocator.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>

namespace {

constexpr U16 kUnits = 4;
constexpr U32 kPortChannels = 16;
constexpr U32 kMostVteps = 16384;

Pelk::IntfId portChannel( U32 number ) {
   return Pelk::IntfId::fromString( "Port-Channel" + std::to_string( number + 1 ) );
}

Pelk::IpGenAddr vtep( U32 number ) {
   return Pelk::IpGenAddr::ipv4(
      { 10, 1, static_cast< U8 >( number >> 8 ), static_cast< U8 >( number & 0xff ) } );
}

Chip::BoardConfig boardConfig() {
   Chip::BoardConfig config;
   for ( U16 unit = 0; unit < kUnits; ++unit ) {
      config.units.push_back( { unit,
                                static_cast< U16 >( unit + 1 ),
                                { { Vornal::kIfpLocalBiasGroup, 2 * kMostVteps },
                                  { Vornal::kEfpLocalBiasGroup, 2 * kMostVteps } } } );
   }
   return config;
}

// The switch, the other agents that matter, and the machine, on which nothing is shared yet.
class Switch : public Support::SwitchState {
 public:
   Switch() : SwitchState( boardConfig() ) {
      Shim::sdk_ = &board.sdk();
      for ( U32 number = 0; number < kPortChannels * kUnits; ++number ) {
         addMember( number );
      }
      inTurns( [ this ] { allocator_.start(); } );
      machine_ = Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
         vcsd, dir, vpIndexStatus, evpnStatus, vtiStatusDir,
         board.entryManager( Vornal::kIfpLocalBiasGroup ), activity.clock(), lagConfig, lagMapping,
         board.entryManager( Vornal::kEfpLocalBiasGroup ), classIdConfig, classIdStatus );
   }

   void bringUp( U32 vteps ) {
      for ( U32 number = 0; number < vteps; ++number ) {
         activity.turnNew( [ this, number ] {
            vpIndexStatus->remoteVportIs( VornalCentral::getRemoteVtepKeyForIp( vtep( number ) ),
                                          number + 1 );
            evpnStatus->segmentStatusIs( portChannel( number % kPortChannels ) )
               ->remoteTepIs( vtep( number ) );
         } );
      }
      activity.run();
   }

   void remove( U32 vteps ) {
      for ( U32 number = 0; number < vteps; ++number ) {
         activity.turnNew( [ this, number ] {
            evpnStatus->segmentStatus( portChannel( number % kPortChannels ) )
               ->remoteTepDel( vtep( number ) );
         } );
      }
      activity.run();
   }

   U32 rules() const {
      U32 rules = 0;
      board.units().forEachEntry( [ & ]( auto const &... ) { ++rules; } );
      return rules;
   }

 private:
   void addMember( U32 number ) {
      auto const unit = static_cast< U16 >( number / kPortChannels );
      auto const port = static_cast< U16 >( number % kPortChannels );
      std::string const name = "Ethernet" + std::to_string( number + 1 );
      interfaceIs( name, unit, port );
      memberIs( portChannel( number % kPortChannels ).stringValue(), name );
   }

   void inTurns( std::function< void() > work ) {
      activity.turnNew( std::move( work ) );
      activity.run();
   }

   Peers::ClassIdAllocator allocator_{
      { 1, kMostVteps + 1, 0 }, activity, classIdConfig, classIdStatus
   };
   Quelm::Ptr< Vornal::EvpnMultihomingLocalBiasSm > machine_;
};

void perVtep( benchmark::State & state, U32 vteps ) {
   state.counters[ "per_vtep" ] =
      benchmark::Counter( vteps, benchmark::Counter::kIsIterationInvariantRate |
                                    benchmark::Counter::kInvert );
}

void bringUp( benchmark::State & state ) {
   auto const vteps = static_cast< U32 >( state.range( 0 ) );
   std::size_t bytes = 0;
   for ( auto _ : state ) {
      state.PauseTiming();
      auto leaf = std::make_unique< Switch >();
      std::size_t const before = mallinfo2().uordblks;
      state.ResumeTiming();
      leaf->bringUp( vteps );
      state.PauseTiming();
      bytes = mallinfo2().uordblks - before;
      if ( leaf->rules() != kUnits * ( 2 * vteps + 2 ) ) {
         state.SkipWithError( "rules are missing" );
      }
      leaf.reset();
      state.ResumeTiming();
   }
   perVtep( state, vteps );
   state.counters[ "bytes_per_vtep" ] = static_cast< double >( bytes ) / vteps;
}
BENCHMARK( bringUp )->RangeMultiplier( 2 )->Range( 1024, 8192 )->Unit( benchmark::kMillisecond );

void removal( benchmark::State & state ) {
   auto const vteps = static_cast< U32 >( state.range( 0 ) );
   for ( auto _ : state ) {
      state.PauseTiming();
      auto leaf = std::make_unique< Switch >();
      leaf->bringUp( vteps );
      state.ResumeTiming();
      leaf->remove( vteps );
      state.PauseTiming();
      if ( leaf->rules() != 0 ) {
         state.SkipWithError( "rules are left over" );
      }
      leaf.reset();
      state.ResumeTiming();
   }
   perVtep( state, vteps );
}
BENCHMARK( removal )->RangeMultiplier( 2 )->Range( 1024, 8192 )->Unit( benchmark::kMillisecond );

}  // namespace
