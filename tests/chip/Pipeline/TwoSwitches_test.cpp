// leaf1 and leaf2 with a link between their underlay ports: frames go from host to host and back.
#include <queue>

#include "Leaf.h"

namespace TwoSwitchesTest {

using namespace PipelineTest;

struct Link {
   std::string_view name;
   IpGenAddr leaf1;
   IpGenAddr leaf2;
};

std::string nameOfLink( testing::TestParamInfo< Link > const & link ) {
   return std::string( link.param.name );
}

// One of the two, with hosts at ports 1 (untagged) and 2 (tagged), in VLAN `vlan` of VNI 10100.
Chip::ForwardingConfig oneOfTwo( IpGenAddr const & own, IpGenAddr const & other, U16 vlan ) {
   Chip::ForwardingConfig config;
   ( own.family() == IpGenAddr::Family::ipv4 ? config.vtepIpv4 : config.vtepIpv6 ) = own;
   config.interfaces = {
      { .intfId = intf( "Ethernet1" ), .logicalPort = 1, .vlans = { {}, vlan } },
      { .intfId = intf( "Ethernet2" ), .logicalPort = 2, .vlans = { { vlan }, {} } },
      { .intfId = intf( "Ethernet49" ), .logicalPort = 49, .isUnderlay = true },
   };
   config.vlanToVni = { { vlan, 10100 } };
   config.tunnels = { { other, { .vpIndex = 7 } } };
   config.floodLists = { { 10100, { other } } };
   return config;
}

class TwoSwitches : public testing::TestWithParam< Link > {
 protected:
   // What hosts receive, by "leaf/port".
   using Received = std::map< std::string, std::vector< U8 > >;

   Received send( int leaf, VornalPort port, FrameFields const & frame ) {
      Received received;
      std::queue< std::pair< int, Sent > > underWay;
      underWay.push( { leaf, { port, bytesOf( frame ) } } );
      for ( ; !underWay.empty(); underWay.pop() ) {
         auto const & [ at, arrival ] = underWay.front();
         Leaf & here = at == 1 ? leaf1 : leaf2;
         here.forward( arrival.port, arrival.bytes );
         for ( Sent const & sent : here.wire.sent ) {
            if ( sent.port == kUnderlay ) {
               underWay.push( { 3 - at, sent } );
            } else {
               received[ std::to_string( at ) + "/" + std::to_string( sent.port.logicalPort() ) ] =
                  sent.bytes;
            }
         }
      }
      return received;
   }

   Leaf leaf1{ oneOfTwo( GetParam().leaf1, GetParam().leaf2, 10 ) };
   Leaf leaf2{ oneOfTwo( GetParam().leaf2, GetParam().leaf1, 200 ) };
};

TEST_P( TwoSwitches, ARequestReachesAllAndTheAnswerReachesOne ) {
   FrameFields request = fromHost1();
   request.content = FrameContent::Arp;
   request.destinationIp = ip( "192.0.2.2" );
   Received const asked = send( 1, kPort1, request );
   FrameFields tagged = request;
   tagged.vlan = 10;
   FrameFields taggedThere = request;
   taggedThere.vlan = 200;
   EXPECT_EQ( asked, ( Received{ { "1/2", bytesOf( tagged ) },
                                 { "2/1", bytesOf( request ) },
                                 { "2/2", bytesOf( taggedThere ) } } ) );

   FrameFields answer = unicast( fromHost1(), kHost1, ip( "192.0.2.1" ) );
   answer.source = kHost2;
   answer.vlan = 200;
   Received const answered = send( 2, kPort2, answer );
   answer.vlan.reset();
   EXPECT_EQ( answered, ( Received{ { "1/1", bytesOf( answer ) } } ) );

   FrameFields const further = unicast( fromHost1(), kHost2, ip( "192.0.2.2" ) );
   FrameFields furtherThere = further;
   furtherThere.vlan = 200;
   EXPECT_EQ( send( 1, kPort1, further ), ( Received{ { "2/2", bytesOf( furtherThere ) } } ) );
}

TEST_P( TwoSwitches, TheLargestFrameFitsThroughTheTunnel ) {
   FrameFields frame = fromHost1();
   frame.payloadSize = Chip::Pipeline::kLargestFrame - 14 - 20 - 8;
   Received const received = send( 1, kPort1, frame );
   EXPECT_EQ( received.at( "2/1" ), bytesOf( frame ) );
   EXPECT_EQ( received.at( "2/2" ).size(), Chip::Pipeline::kLargestFrame + 4 );
}

INSTANTIATE_TEST_SUITE_P( Links, TwoSwitches,
                          testing::Values( Link{ "Ipv4", kLeaf1, kLeaf2 },
                                           Link{ "Ipv6", kLeaf1v6, kLeaf2v6 } ),
                          nameOfLink );

}  // namespace TwoSwitchesTest
