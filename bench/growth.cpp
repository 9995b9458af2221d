// Twice the VTEPs, units or ports: bring-up and complete removal should take at most 2.1 times the
// time and hold 2.1 times the memory.
//
//    bring_up, removal   ms
//    bytes               that the plug-in and its chip hold when all rules are there
//    rules               on all units
#include <benchmark/benchmark.h>

#include <support/Heap.h>
#include <support/Rounds.h>
#include <support/SharedLeaf.h>
#include <support/ShimInUse.h>

namespace Bench {
namespace {

double rulesOf( SharedLeaf const & leaf ) {
   double rules = 0;
   leaf.board.units().forEachEntry( [ & ]( auto const &... ) { ++rules; } );
   return rules;
}

void growth( benchmark::State & state ) {
   Shape const shape{ static_cast< Variant >( state.range( 0 ) ),
                      static_cast< U32 >( state.range( 1 ) ),
                      static_cast< U16 >( state.range( 2 ) ),
                      static_cast< U32 >( state.range( 3 ) ) };
   Rounds bringUp;
   Rounds removal;
   double bytes = 0;
   double rules = 0;
   for ( auto _ : state ) {
      SharedLeaf leaf( shape );
      ShimInUse const shim( leaf.board );
      leaf.machineNew();
      double const before = bytesInUse();
      bringUp.add( timeOf( [ & ] { leaf.bringUp(); } ) );
      bytes = bytesInUse() - before;
      rules = rulesOf( leaf );
      removal.add( timeOf( [ & ] { leaf.remove(); } ) );
      if ( rulesOf( leaf ) != 0 ) {
         state.SkipWithError( "rules are left over" );
      }
   }
   bringUp.report( state, "bring_up" );
   removal.report( state, "removal" );
   state.counters[ "bytes" ] = bytes;
   state.counters[ "rules" ] = rules;
}

void shapes( benchmark::internal::Benchmark * benchmark ) {
   benchmark->ArgNames( { "variant", "vteps", "units", "ports" } );
   for ( Variant const variant : { Variant::EgressMask, Variant::I2EClassId } ) {
      auto const kind = static_cast< S64 >( variant );
      for ( S64 const vteps : { 1024, 2048, 4096, 8192, 16384 } ) {
         benchmark->Args( { kind, vteps, 4, 16 } );
      }
      for ( S64 const units : { 1, 2, 4, 8 } ) {
         benchmark->Args( { kind, 2048, units, 16 } );
      }
      for ( S64 const ports : { 4, 8, 16, 32, 64 } ) {
         benchmark->Args( { kind, 2048, 4, ports } );
      }
   }
   benchmark->Unit( benchmark::kMillisecond )->Iterations( 5 );
}
BENCHMARK( growth )->Apply( shapes );

}  // namespace
}  // namespace Bench
