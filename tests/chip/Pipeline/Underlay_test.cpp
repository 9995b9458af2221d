// A port channel as underlay: VXLAN comes in on any member, and each flow leaves by one.
#include "Leaf.h"

namespace UnderlayTest {

using namespace PipelineTest;

VornalPort const kPort50{ 1, 50, 4 };
VornalPort const kPort51{ 0, 51, 0 };
VornalPort const kPort52{ 1, 52, 4 };

// leaf1 with Port-Channel49 as its underlay: port 49 of unit 0 and port 50 of unit 1.
Chip::ForwardingConfig overPortChannel() {
   Chip::ForwardingConfig config = leaf1Config();
   config.interfaces.back().isUnderlay = false;
   config.interfaces.push_back( { .intfId = intf( "Ethernet50" ), .unit = 1, .logicalPort = 50 } );
   config.portChannels.push_back( { .intfId = intf( "Port-Channel49" ),
                                    .members = { intf( "Ethernet49" ), intf( "Ethernet50" ) },
                                    .isUnderlay = true,
                                    .neighbour = MacAddress( 0x020000000049 ) } );
   return config;
}

// The same with Port-Channel51 beside it: port 51 of unit 0 and port 52 of unit 1.
Chip::ForwardingConfig overTwoPortChannels() {
   Chip::ForwardingConfig config = overPortChannel();
   config.interfaces.push_back( { .intfId = intf( "Ethernet51" ), .unit = 0, .logicalPort = 51 } );
   config.interfaces.push_back( { .intfId = intf( "Ethernet52" ), .unit = 1, .logicalPort = 52 } );
   config.portChannels.push_back( { .intfId = intf( "Port-Channel51" ),
                                    .members = { intf( "Ethernet51" ), intf( "Ethernet52" ) },
                                    .isUnderlay = true } );
   return config;
}

FrameFields flowFromHost1( U16 sourcePort ) {
   FrameFields frame = fromHost1();
   frame.sourcePort = sourcePort;
   return frame;
}

// The copy for that VTEP.
Copy copyFor( FrameStory const & story, IpGenAddr const & vtep ) {
   for ( Copy const & copy : story.copies ) {
      if ( copy.remoteVtep == vtep ) {
         return copy;
      }
   }
   ADD_FAILURE() << "nothing was to leave for " << vtep.stringValue();
   return {};
}

// How many of a thousand flows leave for leaf2 by each port.
std::map< VornalPort, int > flowsByPort( Leaf & leaf1 ) {
   std::map< VornalPort, int > flows;
   for ( U16 sourcePort = 1; sourcePort <= 1000; ++sourcePort ) {
      ++flows[ copyFor( leaf1.forward( flowFromHost1( sourcePort ) ), kLeaf2 ).port ];
   }
   return flows;
}

TEST( UnderlayPortChannel, TakesFramesOnAnyMember ) {
   Leaf leaf1( overPortChannel() );
   for ( VornalPort const & member : { kUnderlay, kPort50 } ) {
      FrameStory const story = leaf1.forward( member, bytesOf( fromLeaf2() ) );
      EXPECT_EQ( reasonOf( story ), "-" );
      EXPECT_EQ( story.arrivalIntfId, intf( "Port-Channel49" ) );
      EXPECT_EQ( verdictOn( story, "Ethernet1" ), "sent" );
   }
}

TEST( UnderlayPortChannel, SendsEachFlowByOneMember ) {
   Leaf leaf1( overPortChannel() );
   for ( U16 sourcePort = 1; sourcePort <= 100; ++sourcePort ) {
      Copy const first = copyFor( leaf1.forward( flowFromHost1( sourcePort ) ), kLeaf2 );
      EXPECT_EQ( nameOf( first.verdict ), "sent" );
      EXPECT_EQ( first.intfId, intf( "Port-Channel49" ) );
      EXPECT_FALSE( leaf1.wire.sent.empty() );
      EXPECT_EQ( copyFor( leaf1.forward( flowFromHost1( sourcePort ) ), kLeaf2 ).port, first.port );
   }
   auto flows = flowsByPort( leaf1 );
   EXPECT_EQ( flows.size(), 2U );
   EXPECT_GT( flows[ kUnderlay ], 400 );
   EXPECT_GT( flows[ kPort50 ], 400 );
}

TEST( UnderlayPortChannel, KnowsTheNeighbourOfItsLink ) {
   Chip::ForwardingConfig config = overPortChannel();
   config.portChannels.back().members = { intf( "Ethernet50" ) };
   config.floodLists = { { 10100, { kLeaf2 } } };
   Leaf leaf1( config );
   leaf1.forward( fromHost1() );
   std::vector< U8 > const bytes = leaf1.wire.at( kPort50 );
   ASSERT_GT( bytes.size(), MacAddress::kBytes );
   EXPECT_EQ( std::vector< U8 >( bytes.begin(), bytes.begin() + MacAddress::kBytes ),
              ( std::vector< U8 >{ 2, 0, 0, 0, 0, 0x49 } ) );
}

TEST( UnderlayPortChannel, SharesFlowsWithAnotherOverAllMembersOfBoth ) {
   Leaf leaf1( overTwoPortChannels() );
   auto flows = flowsByPort( leaf1 );
   for ( VornalPort const & member : { kUnderlay, kPort50, kPort51, kPort52 } ) {
      EXPECT_GT( flows[ member ], 180 ) << Quelm::textOf( member );
   }
}

TEST( UnderlayPortChannel, IsNotChosenWhileNoMemberHasAPort ) {
   Chip::ForwardingConfig config = overTwoPortChannels();
   config.portChannels.back().members.clear();
   Leaf leaf1( config );
   auto flows = flowsByPort( leaf1 );
   EXPECT_EQ( flows[ kUnderlay ] + flows[ kPort50 ], 1000 );
   config.portChannels.at( 1 ).members.clear();
   leaf1.pipeline.forwardingIs( config );
   EXPECT_EQ( nameOf( copyFor( leaf1.forward( fromHost1() ), kLeaf2 ).verdict ), "no-port" );
}

TEST( UnderlayPortChannel, CanBeWhereATunnelLeads ) {
   Chip::ForwardingConfig config = overTwoPortChannels();
   config.tunnels[ kLeaf2 ].underlay = { intf( "Port-Channel51" ) };
   Leaf leaf1( config );
   auto flows = flowsByPort( leaf1 );
   EXPECT_EQ( flows[ kPort51 ] + flows[ kPort52 ], 1000 );
}

TEST( UnderlayPortChannel, CarriesVxlanOnly ) {
   Leaf leaf1( overPortChannel() );
   EXPECT_EQ( reasonOf( leaf1.forward( kPort50, bytesOf( fromHost1() ) ) ), "not-for-this-vtep" );
   EXPECT_EQ( verdictOn( leaf1.forward( fromHost1() ), "Port-Channel1" ), "sent" );
}

}  // namespace UnderlayTest
