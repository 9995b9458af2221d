// Designated-forwarder state: for what came through a tunnel and may have several receivers, and
// for nothing else.
#include "Leaf.h"

namespace DesignationTest {

using namespace PipelineTest;

Chip::ForwardingConfig notDesignatedOnEthernet1() {
   Chip::ForwardingConfig config = leaf1Config();
   config.designatedForwarder[ intf( "Ethernet1" ) ].allVlans = false;
   config.multicastRoutes = { { ip( "239.1.1.1" ), {} } };
   config.hostRoutes = { { ip( "192.0.2.1" ), { 10, kHost1 } } };
   return config;
}

TEST( Designation, HoldsBackEveryKindOfFrameForSeveralFromATunnel ) {
   Leaf leaf1( notDesignatedOnEthernet1() );
   for ( FrameFields const & frame :
         { fromLeaf2(), unicast( fromLeaf2(), kNobody, ip( "192.0.2.77" ) ),
           unicast( fromLeaf2(), kGroupMac4, ip( "239.1.1.9" ) ),
           unicast( fromLeaf2(), kGroupMac4, ip( "239.1.1.1" ) ) } ) {
      FrameStory const story = leaf1.forward( frame );
      EXPECT_EQ( verdictOn( story, "Ethernet1" ), "not-designated" ) << kindOf( story );
      EXPECT_EQ( verdictOn( story, "Ethernet3" ), "sent" );
      EXPECT_TRUE( leaf1.wire.at( kPort1 ).empty() );
   }
   EXPECT_EQ( leaf1.pipeline.counters()[ Verdict::NotDesignated ], 4U );
}

TEST( Designation, IsNothingToKnownUnicast ) {
   Leaf leaf1( notDesignatedOnEthernet1() );
   leaf1.learn( kHost1, kPort1 );
   EXPECT_EQ( verdictOn( leaf1.forward( unicast( fromLeaf2(), kHost1, ip( "192.0.2.1" ) ) ),
                         "Ethernet1" ),
              "sent" );
   EXPECT_EQ( verdictOn( leaf1.forward( unicast( fromLeaf2(), kRouter, ip( "192.0.2.1" ) ) ),
                         "Ethernet1" ),
              "sent" );
}

TEST( Designation, IsNothingToFramesFromAccessPorts ) {
   Leaf leaf1( notDesignatedOnEthernet1() );
   EXPECT_EQ( verdictOn( leaf1.forward( kPort3, bytesOf( fromHost1() ) ), "Ethernet1" ), "sent" );
}

TEST( Designation, CanBeSaidForOneVlan ) {
   Chip::ForwardingConfig config = leaf1Config();
   config.designatedForwarder[ intf( "Ethernet2" ) ].perVlan = { { 20, false } };
   config.designatedForwarder[ intf( "Port-Channel1" ) ] = { false, { { 10, true } } };
   Leaf leaf1( config );
   FrameFields frame = fromLeaf2();
   EXPECT_EQ( verdictOn( leaf1.forward( frame ), "Ethernet2" ), "sent" );
   EXPECT_EQ( verdictOn( leaf1.forward( frame ), "Port-Channel1" ), "sent" );
   frame.outer->vni = 10200;
   EXPECT_EQ( verdictOn( leaf1.forward( frame ), "Ethernet2" ), "not-designated" );
}

}  // namespace DesignationTest
