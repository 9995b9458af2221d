// Many remote VTEPs on the class-id variant: bring-up and complete removal of N VTEPs that share 16
// port channels, whose members are on 4 units, with the allocator granting what is asked for.
//
// Both should take twice as long for twice as many VTEPs (Time, and `per_vtep`), and so should the
// memory that is held when all are programmed (`bytes_per_vtep`).
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <Board/Board.h>
#include <Peers/ClassIdAllocator.h>
#include <Lag/LagPhyIntfMappingSm.h>
#include <Oxa/OxaEvpnTepSegmentSm.h>
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

Chip::BoardConfig board() {
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
class Switch {
 public:
   Switch() {
      Shim::sdk_ = &board_.sdk();
      for ( U16 unit = 0; unit < kUnits; ++unit ) {
         vcsd_->vornalModIdIs( unit, static_cast< U16 >( unit + 1 ) );
      }
      for ( U32 number = 0; number < kPortChannels * kUnits; ++number ) {
         addMember( number );
      }
      lagSm_->hasNotificationActiveIs( true );
      segmentSm_->hasNotificationActiveIs( true );
      inTurns( [ this ] { allocator_.start(); } );
      machine_ = Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
         vcsd_, dir_, vpIndexStatus_, evpnStatus_, Quelm::make< Vxlan::VtiStatusDir >( "vti" ),
         board_.entryManager( Vornal::kIfpLocalBiasGroup ), activity_.clock(), lagConfig_,
         lagMapping_, board_.entryManager( Vornal::kEfpLocalBiasGroup ), config_, status_ );
   }

   void bringUp( U32 vteps ) {
      for ( U32 number = 0; number < vteps; ++number ) {
         activity_.turnNew( [ this, number ] {
            vpIndexStatus_->remoteVportIs( VornalCentral::getRemoteVtepKeyForIp( vtep( number ) ),
                                           number + 1 );
            evpnStatus_->segmentStatusIs( portChannel( number % kPortChannels ) )
               ->remoteTepIs( vtep( number ) );
         } );
      }
      activity_.run();
   }

   void remove( U32 vteps ) {
      for ( U32 number = 0; number < vteps; ++number ) {
         activity_.turnNew( [ this, number ] {
            evpnStatus_->segmentStatus( portChannel( number % kPortChannels ) )
               ->remoteTepDel( vtep( number ) );
         } );
      }
      activity_.run();
   }

   U32 rules() const {
      U32 rules = 0;
      for ( auto const & [ number, unit ] : board_.units() ) {
         for ( auto const & [ assignment, group ] : unit.groups() ) {
            rules += group.used();
         }
      }
      return rules;
   }

 private:
   void addMember( U32 number ) {
      auto const unit = static_cast< U16 >( number / kPortChannels );
      auto const port = static_cast< U16 >( number % kPortChannels );
      auto const intf = Pelk::IntfId::fromString( "Ethernet" + std::to_string( number + 1 ) );
      vcsd_->intfPortIs( intf, VornalTypes::VornalPort( unit, port, U16( unit + 1 ) ) );
      lagConfig_->phyIntfIs( intf )->lagIs( portChannel( number % kPortChannels ) );
   }

   void inTurns( std::function< void() > work ) {
      activity_.turnNew( std::move( work ) );
      activity_.run();
   }

   Kiv::ActivityManager activity_;
   Chip::Board board_{ board() };
   Quelm::Ptr< Vornal::VornalCommonSmData > vcsd_ =
      Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   Quelm::Ptr< Oxa::EvpnTepSegmentDir > dir_ = Oxa::evpnTepSegmentDirFactory( "segments" );
   Quelm::Ptr< VornalCentral::VpIndexStatus > vpIndexStatus_ =
      Quelm::make< VornalCentral::VpIndexStatus >( "vp" );
   Quelm::Ptr< Evpn::EvpnStatus > evpnStatus_ = Quelm::make< Evpn::EvpnStatus >( "evpn" );
   Quelm::Ptr< Lag::Config > lagConfig_ = Quelm::make< Lag::Config >( "lag" );
   Quelm::Ptr< Lag::LagPhyIntfMapping > lagMapping_ =
      Quelm::make< Lag::LagPhyIntfMapping >( "lagToMembers" );
   Quelm::Ptr< Lag::LagPhyIntfMappingSm > lagSm_ =
      Lag::LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( lagConfig_, lagMapping_ );
   Quelm::Ptr< Oxa::OxaEvpnTepSegmentSm > segmentSm_ =
      Oxa::OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( evpnStatus_, dir_, nullptr, lagMapping_ );
   Quelm::Ptr< VornalCentral::I2EClassIdIndexConfig > config_ =
      Quelm::make< VornalCentral::I2EClassIdIndexConfig >( "requests" );
   Quelm::Ptr< VornalCentral::I2EClassIdIndexStatus > status_ =
      Quelm::make< VornalCentral::I2EClassIdIndexStatus >( "grants" );
   Peers::ClassIdAllocator allocator_{ { 1, kMostVteps + 1, 0 }, activity_, config_, status_ };
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
