// The list of learned addresses: where each is, and by which frame it came there.
#include "Leaf.h"

namespace MacsTest {

using namespace PipelineTest;
using Chip::LearnedMac;
using Macs = std::vector< LearnedMac >;

Chip::MacPlace on( std::string_view interface ) {
   return { .intfId = intf( interface ) };
}

TEST( Macs, AreListedByVlanAndAddress ) {
   Leaf leaf1;
   EXPECT_EQ( leaf1.pipeline.macs(), Macs{} );
   FrameFields inVlan20 = fromHost1();
   leaf1.forward( kPort2, bytesOf( inVlan20 ) );
   leaf1.learn( kHost3, kPort5 );
   leaf1.learnBehindLeaf2( kHost2 );
   leaf1.learn( kHost1, kPort1 );
   EXPECT_EQ( leaf1.pipeline.macs(), ( Macs{
                                        { 10, kHost1, on( "Ethernet1" ), 4 },
                                        { 10, kHost2, { .remoteVtep = kLeaf2 }, 3 },
                                        { 10, kHost3, on( "Port-Channel1" ), 2 },
                                        { 20, kHost1, on( "Ethernet2" ), 1 },
                                     } ) );
}

TEST( Macs, NameTheFrameByWhichAnAddressWasLearnedOrLastMoved ) {
   Leaf leaf1;
   leaf1.forward( kPort1, { 1, 2, 3 } );  // dropped frames count too
   leaf1.learn( kHost1, kPort1 );
   leaf1.learn( kHost1, kPort1 );
   EXPECT_EQ( leaf1.pipeline.macs(), ( Macs{ { 10, kHost1, on( "Ethernet1" ), 2 } } ) );
   leaf1.learn( kHost1, kPort3 );
   EXPECT_EQ( leaf1.pipeline.macs(), ( Macs{ { 10, kHost1, on( "Ethernet3" ), 4 } } ) );
}

TEST( Macs, KeepTheirFrameWhenForwardingChanges ) {
   Leaf leaf1;
   leaf1.forward( fromHost1() );
   leaf1.learnBehindLeaf2( kHost2 );
   Macs const before = leaf1.pipeline.macs();
   Chip::ForwardingConfig config = leaf1Config();
   std::reverse( config.interfaces.begin(), config.interfaces.end() );
   leaf1.pipeline.forwardingIs( config );
   EXPECT_EQ( leaf1.pipeline.macs(), before );
}

}  // namespace MacsTest
