// What traffic sees of a rule in the making: probe packets after every single call that reaches the
// hardware while VTEPs come, change and go.
#include <set>

#include <gtest/gtest.h>

#include <Frames/FrameFields.h>
#include <Pipeline/Pipeline.h>
#include "../support/LocalBiasSwitch.h"

namespace {

using namespace Support;

constexpr U32 kVni = 10100;

Chip::MacAddress hostBehind( U16 logicalPort ) {
   return Chip::MacAddress( 0x00005e005300 + logicalPort );
}

// Ethernet1 and Port-Channel2 are shared with VTEP 10.0.0.2, Ethernet5 with 10.0.0.4; Ethernet6 is
// single-homed. The chip forwards, and a host has been learned behind each of them.
class ProbedSwitch : public LocalBiasSwitch, private Chip::Transmitter {
 public:
   ProbedSwitch() {
      for ( U16 const logicalPort : { U16{ 1 }, U16{ 3 }, U16{ 4 }, U16{ 5 }, U16{ 6 } } ) {
         interfaceIs( "Ethernet" + std::to_string( logicalPort ), 0, logicalPort );
      }
      memberIs( "Port-Channel2", "Ethernet3" );
      memberIs( "Port-Channel2", "Ethernet4" );
      vtepIs( "10.0.0.2", 2 );
      vtepIs( "10.0.0.3", 3 );
      vtepIs( "10.0.0.4", 4 );
      pipeline_.forwardingIs( forwarding() );
      for ( auto const & [ intfId, logicalPort ] : kAccess ) {
         Chip::FrameFields const hello{ .source = hostBehind( logicalPort ) };
         pipeline_.forward( port( 0, logicalPort ), bytesOf( hello ), *this );
      }
      afterCall = [ this ] { probe(); };
   }

   // What any probe has missed, once each.
   std::set< std::string > lost;
   std::size_t probes = 0;

 private:
   using Access = std::pair< std::string, U16 >;
   inline static std::vector< Access > const kAccess{
      { "Ethernet1", 1 }, { "Port-Channel2", 3 }, { "Ethernet5", 5 }, { "Ethernet6", 6 }
   };

   static Chip::ForwardingConfig forwarding() {
      Chip::ForwardingConfig config;
      config.vtepIpv4 = ip( "10.0.0.1" );
      config.vlanToVni[ 10 ] = kVni;
      for ( U16 const logicalPort : { U16{ 1 }, U16{ 3 }, U16{ 4 }, U16{ 5 }, U16{ 6 } } ) {
         config.interfaces.push_back(
            { .intfId = intf( "Ethernet" + std::to_string( logicalPort ) ),
              .logicalPort = logicalPort,
              .vlans = { .untagged = 10 } } );
      }
      config.interfaces.push_back(
         { .intfId = intf( "Ethernet49" ), .logicalPort = 49, .isUnderlay = true } );
      config.portChannels.push_back( { intf( "Port-Channel2" ),
                                       { intf( "Ethernet3" ), intf( "Ethernet4" ) },
                                       { .untagged = 10 } } );
      for ( U16 const number : { U16{ 2 }, U16{ 3 }, U16{ 4 } } ) {
         config.tunnels[ ip( "10.0.0." + std::to_string( number ) ) ] = { number, {} };
      }
      return config;
   }

   void transmit( VornalTypes::VornalPort, std::span< U8 const > ) override {}

   // Whether a frame from the VTEP reaches the interface.
   bool reaches( std::string const & address, Chip::MacAddress destination,
                 std::string const & intfId ) {
      Chip::FrameFields const frame{ .outer =
                                        Chip::OuterFields{ .sourceVtep = ip( address ),
                                                           .destinationVtep = ip( "10.0.0.1" ),
                                                           .vni = kVni },
                                     .source = Chip::MacAddress( 0x00005e0053ff ),
                                     .destination = destination };
      ++probes;
      auto const & copies = pipeline_.forward( port( 0, 49 ), bytesOf( frame ), *this ).copies;
      return std::any_of( copies.begin(), copies.end(), [ & ]( Chip::Copy const & copy ) {
         return copy.intfId == intf( intfId ) && copy.verdict == Chip::Verdict::Sent;
      } );
   }

   void expectReached( std::string const & address, Chip::MacAddress destination,
                       std::string const & intfId, std::string const & kind ) {
      if ( !reaches( address, destination, intfId ) ) {
         lost.insert( kind + " from " + address + " at " + intfId + " after " +
                      ChipTest::textOf( calls.back() ) );
      }
   }

   void probe() {
      for ( std::string const address : { "10.0.0.2", "10.0.0.3", "10.0.0.4" } ) {
         for ( auto const & [ intfId, logicalPort ] : kAccess ) {
            expectReached( address, hostBehind( logicalPort ), intfId, "known unicast" );
            if ( !sharesWith( address, intfId ) ) {
               expectReached( address, Chip::MacAddress::broadcast(), intfId, "broadcast" );
            }
         }
      }
   }

   // Whether it ever shares a segment there.
   static bool sharesWith( std::string const & address, std::string const & intfId ) {
      bool const isOfSecond = intfId == "Ethernet1" || intfId == "Port-Channel2";
      return ( address == "10.0.0.2" && isOfSecond ) ||
             ( address == "10.0.0.4" && intfId == "Ethernet5" );
   }

   Chip::Pipeline pipeline_{ board.units() };
};

class ProbePackets : public testing::TestWithParam< Variant > {
 protected:
   // A grant, as soon as it is asked for.
   void grant( ProbedSwitch & leaf, std::string const & address, U16 classId ) {
      if ( GetParam() == Variant::I2EClassId ) {
         leaf.classIdIs( address, classId );
      }
   }
   void takeBack( ProbedSwitch & leaf, std::string const & address ) {
      leaf.classIdStatus->remoteESPeerVtepDel( ip( address ) );
   }
};

TEST_P( ProbePackets, AreNotLostWhileVtepsComeChangeAndGo ) {
   ProbedSwitch leaf;
   auto const machine = leaf.machineNew( GetParam() );

   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   grant( leaf, "10.0.0.2", 5 );
   leaf.segmentIs( "Ethernet5", { "10.0.0.4" } );
   grant( leaf, "10.0.0.4", 6 );
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
   takeBack( leaf, "10.0.0.2" );
   leaf.vtepIs( "10.0.0.2", 102 );
   leaf.vtepIs( "10.0.0.2", 2 );
   grant( leaf, "10.0.0.2", 7 );
   leaf.segmentDel( "Ethernet1" );
   leaf.segmentDel( "Port-Channel2" );
   leaf.vtepDel( "10.0.0.4" );
   leaf.segmentDel( "Ethernet5" );

   EXPECT_EQ( leaf.lost, std::set< std::string >() );
   EXPECT_GT( leaf.probes, 300U );
   EXPECT_EQ( leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->used( 0 ), 0U );
}

// That probes can be lost at all: a rule of higher standing than the exemptions, for one VTEP.
TEST_P( ProbePackets, AreLostToARuleThatStandsAboveTheExemptions ) {
   ProbedSwitch leaf;
   auto const ingress = leaf.board.entryManager( Vornal::kIfpLocalBiasGroup );
   U32 const entry = ingress->getEntry( 0, "in the way", {} );
   Shim::sdk_->bcm_field_qualify_SrcVxlanGport( 0, entry, Shim::sdk_->vxlanGport( 3 ) );
   _shr_pbmp ports{};
   ports.words[ 0 ] = 1U << 6;
   ingress->addEgressMaskAction( 0, entry, ports );
   EXPECT_EQ( leaf.lost, std::set< std::string >() ) << "a staged rule touches no frame";

   ingress->installEntry( 0, entry );

   EXPECT_EQ( leaf.lost.size(), 2U );
}

INSTANTIATE_TEST_SUITE_P( OfBothVariants, ProbePackets,
                          testing::Values( Variant::EgressMask, Variant::I2EClassId ) );

}  // namespace
