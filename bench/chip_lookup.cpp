// The field processor's lookup, on an ingress group as the plug-in fills it: per-VTEP rules, two
// unicast exemptions, per-VNI rules. A packet pipeline makes one such lookup for each frame.
#include <benchmark/benchmark.h>

#include <Board/Board.h>
#include <FieldProcessor/Gport.h>

namespace {

using Chip::IngressFields;

constexpr U32 kExact = BCM_FIELD_EXACT_MATCH_MASK;

// Unit 0 with `rules` ingress rules, a quarter of them for VNIs.
class FilledChip {
 public:
   explicit FilledChip( U32 rules )
         : board( { { { 0, 0, { { Vornal::kIfpLocalBiasGroup, rules } } } } } ),
           ifp( board.entryManager( Vornal::kIfpLocalBiasGroup ) ),
           group( *board.units().group( 0, Vornal::kIfpLocalBiasGroup ) ) {
      exemption( BCM_FIELD_PKT_RES_L2UC );
      exemption( BCM_FIELD_PKT_RES_L3UCKNOWN );
      for ( U32 n = 2; n < rules; ++n ) {
         n % 4 == 0 ? perVni( n ) : perVtep( static_cast< U16 >( n ) );
      }
   }

   void exemption( U32 packetRes ) {
      U32 const id = ifp->getEntry( 0, "no-op", {} );
      board.sdk().bcm_field_qualify_PacketRes( 0, id, packetRes, 0xff );
      board.sdk().bcm_field_qualify_TunnelTerminated( 0, id, 1, 1 );
      ifp->installEntry( 0, id );
   }
   void perVtep( U16 vpIndex ) {
      U32 const id = ifp->getEntry( 0, "from vtep", {} );
      board.sdk().bcm_field_qualify_SrcVxlanGport( 0, id, Chip::vxlanGportOf( vpIndex ) );
      ifp->setPriorityForEntry( 0, id, 1 );
      ifp->addEgressMaskAction( 0, id, {} );
      ifp->installEntry( 0, id );
   }
   void perVni( U32 vni ) {
      U32 const id = ifp->getEntry( 0, "no-op", {} );
      board.sdk().bcm_field_qualify_VxlanNetworkId( 0, id, vni, kExact );
      board.sdk().bcm_field_qualify_PacketRes( 0, id, board.sdk().packetResL3McKnown(), kExact );
      ifp->setPriorityForEntry( 0, id, 2 );
      ifp->installEntry( 0, id );
   }

   Chip::Board board;
   Quelm::Ptr< Chip::SoftTcamEntryManager > ifp;
   Chip::Group const & group;
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
      chip.ifp->releaseEntry( 0, id );
      id = chip.ifp->getEntry( 0, "from vtep", {} );
      chip.board.sdk().bcm_field_qualify_SrcVxlanGport( 0, id, Chip::vxlanGportOf( 2 ) );
      chip.ifp->addEgressMaskAction( 0, id, {} );
      chip.ifp->installEntry( 0, id );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( comeAndGo )->Arg( 256 )->Arg( 4096 );

}  // namespace
