// The field processor's lookup, on an ingress group as the plug-in fills it: per-VTEP rules, two
// unicast exemptions, per-VNI rules. A packet pipeline makes one such lookup for each frame.
//
// The lookup that serves stands beside the obvious one and, where it is installed, beside DPDK's
// classifier: the same rules, the same keys, the same run. `change` lets one rule come and go
// between lookups.
#include <benchmark/benchmark.h>

#include <support/ProgrammedChip.h>

#ifdef VORNAL_HAS_ACL
#include <support/AclLookup.h>
#endif

namespace {

using Chip::IngressFields;
using Chip::LookupEngine;

// Unit 0 with `rules` ingress rules, a quarter of them for VNIs.
class FilledChip : public Bench::ProgrammedChip {
 public:
   explicit FilledChip( U32 rules, LookupEngine engine = LookupEngine::TupleSpace )
         : ProgrammedChip( rules, engine ) {
      addExemptions();
      for ( U32 n = 2; n < rules; ++n ) {
         n % 4 == 0 ? addPerVni( n ) : addMaskOfVtep( static_cast< U16 >( n ) );
      }
   }

   // A VTEP goes and comes back.
   void change() {
      ingress->releaseEntry( 0, changed_ );
      changed_ = ingress->getEntry( 0, "from vtep", {} );
      board.sdk().bcm_field_qualify_SrcVxlanGport( 0, changed_, Chip::vxlanGportOf( 2 ) );
      ingress->addEgressMaskAction( 0, changed_, {} );
      ingress->installEntry( 0, changed_ );
   }

   Chip::Group const & group = *board.units().group( 0, Vornal::kIfpLocalBiasGroup );

 private:
   U32 changed_ = 3;  // the first VTEP's rule
};

IngressFields frameOf( U32 n, U32 rules ) {
   auto const frame = static_cast< U16 >( n % rules );
   return { Chip::vxlanGportOf( frame ), frame % 13U, true, frame };
}

template< LookupEngine engine > void lookUp( benchmark::State & state ) {
   auto const rules = static_cast< U32 >( state.range( 0 ) );
   FilledChip const chip( rules, engine );
   U32 frame = 0;
   for ( auto _ : state ) {
      benchmark::DoNotOptimize( chip.group.lookup( frameOf( frame++, rules ) ) );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( lookUp< LookupEngine::Linear > )->Arg( 16 )->Arg( 256 )->Arg( 4096 );
BENCHMARK( lookUp< LookupEngine::TupleSpace > )->Arg( 16 )->Arg( 256 )->Arg( 4096 );

void changeAndLookUp( benchmark::State & state ) {
   auto const rules = static_cast< U32 >( state.range( 0 ) );
   FilledChip chip( rules );
   U32 frame = 0;
   for ( auto _ : state ) {
      chip.change();
      benchmark::DoNotOptimize( chip.group.lookup( frameOf( frame++, rules ) ) );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( changeAndLookUp )->Arg( 16 )->Arg( 256 )->Arg( 4096 );

#ifdef VORNAL_HAS_ACL

// In batches, as the classifier is meant to be used.
void lookUpByAcl( benchmark::State & state ) {
   auto const rules = static_cast< U32 >( state.range( 0 ) );
   FilledChip const chip( rules );
   Bench::AclLookup const acl( chip.group );
   constexpr U32 batch = 32;
   std::vector< Bench::AclLookup::Key > keys;
   for ( U32 n = 0; n < rules * batch; ++n ) {
      keys.emplace_back( frameOf( n, rules ) );
   }
   std::vector< U8 const * > pointers( batch );
   std::vector< U32 > winners( batch );
   std::size_t next = 0;
   for ( auto _ : state ) {
      for ( U8 const *& pointer : pointers ) {
         pointer = reinterpret_cast< U8 const * >( &keys[ next++ ] );
      }
      next %= keys.size();
      acl.find( pointers, winners );
      benchmark::DoNotOptimize( winners.data() );
   }
   for ( U32 n = 0; n < batch; ++n ) {
      auto const * const key = reinterpret_cast< Bench::AclLookup::Key const * >( pointers[ n ] );
      auto const place = static_cast< U32 >( key - keys.data() );
      Chip::Entry const * const winner = chip.group.lookup( frameOf( place, rules ) );
      if ( winners[ n ] != ( winner ? winner->id() : 0 ) ) {
         state.SkipWithError( "the classifier finds another winner" );
      }
   }
   state.SetItemsProcessed( state.iterations() * batch );
}
BENCHMARK( lookUpByAcl )->Arg( 16 )->Arg( 256 )->Arg( 4096 );

void changeAndLookUpByAcl( benchmark::State & state ) {
   auto const rules = static_cast< U32 >( state.range( 0 ) );
   FilledChip chip( rules );
   Bench::AclLookup acl( chip.group );
   Bench::AclLookup::Key const key( frameOf( 2, rules ) );
   std::vector< U8 const * > const keys{ reinterpret_cast< U8 const * >( &key ) };
   std::vector< U32 > winners( 1 );
   for ( auto _ : state ) {
      acl.compile();
      acl.find( keys, winners );
      benchmark::DoNotOptimize( winners.data() );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( changeAndLookUpByAcl )->Arg( 16 )->Arg( 256 )->Arg( 4096 );

#endif

}  // namespace
