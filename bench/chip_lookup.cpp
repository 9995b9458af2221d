// The field processor's lookup, on an ingress group as the plug-in fills it: per-VTEP rules, two
// unicast exemptions, per-VNI rules. A packet pipeline makes one such lookup for each frame.
#include <benchmark/benchmark.h>

#include <support/ProgrammedChip.h>

namespace {

using Chip::IngressFields;

// Unit 0 with `rules` ingress rules, a quarter of them for VNIs.
class FilledChip : public Bench::ProgrammedChip {
 public:
   explicit FilledChip( U32 rules ) : ProgrammedChip( rules ) {
      addExemptions();
      for ( U32 n = 2; n < rules; ++n ) {
         n % 4 == 0 ? addPerVni( n ) : addMaskOfVtep( static_cast< U16 >( n ) );
      }
   }

   Chip::Group const & group = *board.units().group( 0, Vornal::kIfpLocalBiasGroup );
};

void lookUp( benchmark::State & state ) {
   auto const rules = static_cast< U32 >( state.range( 0 ) );
   FilledChip const chip( rules );
   U16 frame = 0;
   for ( auto _ : state ) {
      IngressFields const fields{ Chip::vxlanGportOf( frame ), frame % 13U, true, frame };
      benchmark::DoNotOptimize( chip.group.lookup( fields ) );
      frame = static_cast< U16 >( ( frame + 1 ) % rules );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( lookUp )->Arg( 16 )->Arg( 256 )->Arg( 4096 );

// A VTEP comes and goes while the group is otherwise full.
void comeAndGo( benchmark::State & state ) {
   auto const rules = static_cast< U32 >( state.range( 0 ) );
   FilledChip chip( rules );
   U32 id = 3;  // the first VTEP's
   for ( auto _ : state ) {
      chip.ingress->releaseEntry( 0, id );
      id = chip.ingress->getEntry( 0, "from vtep", {} );
      chip.board.sdk().bcm_field_qualify_SrcVxlanGport( 0, id, Chip::vxlanGportOf( 2 ) );
      chip.ingress->addEgressMaskAction( 0, id, {} );
      chip.ingress->installEntry( 0, id );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( comeAndGo )->Arg( 256 )->Arg( 4096 );

}  // namespace
