// The walk over the ports of a bitmap.
#include <gtest/gtest.h>

#include <SoftSdk/PortBitmap.h>

namespace PortBitmapTest {

using Ports = std::vector< U32 >;

Brum::PerUnitBitmap bitmapOfPorts( Ports const & ports ) {
   Brum::PerUnitBitmap bitmap;
   for ( U32 const port : ports ) {
      bitmap.bitSet( port );
   }
   return bitmap;
}

TEST( PortBitmap, EmptyBitmapHasNoPorts ) {
   EXPECT_EQ( Chip::portsOf( {} ), Ports() );
}

TEST( PortBitmap, PortsComeInAscendingOrderOverAllWords ) {
   Ports const ports{ 0, 1, 31, 32, 63, 64, 200, 350, 351 };
   EXPECT_EQ( Chip::portsOf( bitmapOfPorts( ports ) ), ports );
}

TEST( PortBitmap, WalkVisitsEveryPortOfAFullBitmap ) {
   Ports all;
   for ( U32 port = 0; port < Brum::PerUnitBitmap::kBits; ++port ) {
      all.push_back( port );
   }
   Ports visited;
   Chip::forEachPort( bitmapOfPorts( all ), [ & ]( U32 port ) { visited.push_back( port ); } );
   EXPECT_EQ( visited, all );
}

TEST( PortBitmap, SdkBitmapAndBackIsTheSame ) {
   Brum::PerUnitBitmap const bitmap = bitmapOfPorts( { 0, 33, 351 } );
   EXPECT_EQ( Chip::bitmapOf( Chip::pbmpOf( bitmap ) ), bitmap );
}

}  // namespace PortBitmapTest
