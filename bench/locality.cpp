// What an event costs depends on the VTEPs and segments that it touches, and on no others: the same
// events on a switch of 16 VTEPs, `alone`, and on one with 16,384 further VTEPs on a segment of
// their own, `among`. The ratio should be at most 1.1.
#include <benchmark/benchmark.h>

#include <support/Rounds.h>
#include <support/SharedLeaf.h>
#include <support/ShimInUse.h>

namespace Bench {
namespace {

using Event = void ( SharedLeaf::* )();

// A switch with all its VTEPs.
class Leaf {
 public:
   explicit Leaf( Shape const & shape ) : leaf_( shape ) {
      ShimInUse const shim( leaf_.board );
      leaf_.machineNew();
      leaf_.bringUp();
   }

   // The event happens 20 times before it is timed, which warms the caches.
   double timeOf( Event event ) {
      ShimInUse const shim( leaf_.board );
      auto const often = [ & ] {
         for ( int n = 0; n < 20; ++n ) {
            ( leaf_.*event )();
         }
      };
      often();
      return Bench::timeOf( often );
   }

 private:
   SharedLeaf leaf_;
};

template< Event event > void locality( benchmark::State & state ) {
   auto const variant = static_cast< Variant >( state.range( 0 ) );
   constexpr U32 kUnrelated = 16384;
   constexpr U16 kUnits = 1;  // VNIs change on one unit only
   Leaf among( Shape{ variant, 16, kUnits, 4, kUnrelated } );
   Pair pair;
   for ( auto _ : state ) {
      double const alone = Leaf( Shape{ variant, 16, kUnits, 4 } ).timeOf( event );
      pair.add( alone, among.timeOf( event ) );
   }
   pair.report( state, "alone", "among" );
}

void variants( benchmark::internal::Benchmark * benchmark ) {
   benchmark->ArgName( "variant" );
   benchmark->Arg( static_cast< S64 >( Variant::EgressMask ) );
   benchmark->Arg( static_cast< S64 >( Variant::I2EClassId ) );
   benchmark->Unit( benchmark::kMillisecond )->Iterations( 101 );
}
BENCHMARK( locality< &SharedLeaf::virtualPortsChange > )->Apply( variants );
BENCHMARK( locality< &SharedLeaf::memberFlaps > )->Apply( variants );
BENCHMARK( locality< &SharedLeaf::portMovesAndReturns > )->Apply( variants );
BENCHMARK( locality< &SharedLeaf::vnisChange > )->Apply( variants );

}  // namespace
}  // namespace Bench
