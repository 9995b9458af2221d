// Every frame that can come in meets every port that it can leave by: the ports reached are those
// of RFC 8365, section 8.3.1.
//
// What is expected is worked out from what the scenario publishes, segment by segment; no rule is
// looked at. The switch runs the plug-in that ships.
#include <set>

#include <gtest/gtest.h>

#include <AgentRun.h>

namespace {

using Chip::FrameKind;
using Places = std::set< std::string >;  // interfaces, port channels, remote VTEPs

// The addresses of one family, as texts.
struct Family {
   std::string name;
   std::string vtep;  // what VTEP addresses begin with
   std::string host;  // what addresses of hosts begin with
   std::string group;
   std::string groupMac;
};

void PrintTo( Family const & family, std::ostream * out ) {
   *out << family.name;
}

Family const kIpv4{ "Ipv4", "10.0.0.", "192.0.2.", "239.1.1.1", "01:00:5e:01:01:01" };
Family const kIpv6{ "Ipv6", "2001:db8::", "2001:db8:100::", "ff3e::8000:1", "33:33:80:00:00:01" };

// The places behind which a host is, each with its host's number.
struct HostPlace {
   std::string place;
   int host;
};
std::vector< HostPlace > const kPorts{ { "Ethernet1", 1 },      // shared with VTEP 2
                                       { "Port-Channel2", 2 },  // shared with VTEPs 2 and 4
                                       { "Ethernet5", 5 },      // a segment shared with VTEP 4
                                       { "Ethernet6", 6 } };    // single-homed
constexpr std::array kVteps{ 2, 3, 4 };                         // VTEP 3 shares nothing

std::string macOf( int host ) {
   return "00:00:5e:00:53:0" + std::to_string( host );
}

// A frame of the matrix: where it comes from, what it is, and the host it is for, if it is for one.
struct MatrixFrame {
   std::string from;
   bool isTunnelled;
   FrameKind kind;
   HostPlace target;
};

class Matrix : public AgentRun,
               public testing::WithParamInterface< std::tuple< std::string, Family, bool > > {
 protected:
   std::string const & variant() const { return std::get< 0 >( GetParam() ); }
   Family const & family() const { return std::get< 1 >( GetParam() ); }
   // Whether Ethernet5 is not the designated forwarder of its segment.
   bool isBackup() const { return std::get< 2 >( GetParam() ); }

   std::string vtep( int number ) const { return family().vtep + std::to_string( number ); }

   std::string switchText() const {
      std::string text =
         "scenario: matrix\n"
         "switch:\n"
         "  name: leaf1\n"
         "  variant: " +
         variant() +
         "\n"
         "  units: { 0: { module: 1 } }\n"
         "  interfaces: { Ethernet1: { unit: 0, port: 1 }, Ethernet3: { unit: 0, port: 3 },\n"
         "                Ethernet4: { unit: 0, port: 4 }, Ethernet5: { unit: 0, port: 5 },\n"
         "                Ethernet6: { unit: 0, port: 6 }, Ethernet49: { unit: 0, port: 49 } }\n"
         "  port-channels: { Port-Channel2: [ Ethernet3, Ethernet4 ] }\n"
         "forwarding:\n"
         "  vtep-addresses: [ '" +
         vtep( 1 ) +
         "' ]\n"
         "  underlay: [ Ethernet49 ]\n"
         "  vlans: { 10: 10100 }\n"
         "  access: { Ethernet1: 10, Port-Channel2: 10, Ethernet5: 10, Ethernet6: 10 }\n"
         "  not-designated: [" +
         std::string( isBackup() ? "Ethernet5" : "" ) +
         "]\n"
         "  multicast-routes: [ '" +
         family().group +
         "' ]\n"
         "  hosts:\n";
      for ( HostPlace const & port : kPorts ) {
         text +=
            "    '" + ipOf( port.host ) + "': { vlan: 10, mac: '" + macOf( port.host ) + "' }\n";
      }
      return text +
             "evpn:\n"
             "  segments: { Ethernet1: [ '" +
             vtep( 2 ) + "' ], Ethernet5: [ '" + vtep( 4 ) +
             "' ],\n              Port-Channel2: [ '" + vtep( 2 ) + "', '" + vtep( 4 ) +
             "' ] }\n"
             "  vteps: { '" +
             vtep( 2 ) + "': { virtual-port: 2 }, '" + vtep( 3 ) + "': { virtual-port: 3 }, '" +
             vtep( 4 ) +
             "': { virtual-port: 4 } }\n"
             "steps:\n"
             "  - ready: subagents::l2Ready\n";
   }

   std::string ipOf( int host ) const { return family().host + std::to_string( host ); }

   // Hosts make themselves known, so that their addresses are learned.
   std::string learningSteps() const {
      std::string text;
      for ( HostPlace const & port : kPorts ) {
         text += "  - frame: { on: " + port.place + ", source: '" + macOf( port.host ) + "' }\n";
      }
      return text;
   }

   std::string stepOf( MatrixFrame const & frame ) const {
      std::string const udp = ", content: udp, source-ip: '" + family().host + "100'";
      std::string text = "  - frame: { source: '00:00:5e:00:53:ff', ";
      text += frame.isTunnelled ? "from: '" + frame.from + "', vni: 10100" : "on: " + frame.from;
      switch ( frame.kind ) {
      case FrameKind::Broadcast: break;
      case FrameKind::UnknownUnicast: text += ", destination: '00:00:5e:00:53:77'"; break;
      case FrameKind::L2Multicast: text += ", destination: '01:00:5e:00:00:fb'"; break;
      case FrameKind::RoutedMulticast:
         text += ", destination: '" + family().groupMac + "'" + udp + ", destination-ip: '" +
                 family().group + "'";
         break;
      case FrameKind::KnownUnicast:
         text += ", destination: '" + macOf( frame.target.host ) + "'";
         break;
      case FrameKind::RoutedUnicast:
         text += ", destination: '02:00:00:00:00:01'" + udp + ", destination-ip: '" +
                 ipOf( frame.target.host ) + "'";
         break;
      }
      return text + " }\n";
   }

   // Every source with every kind, to every host where the kind is for one.
   std::vector< MatrixFrame > frames() const {
      std::vector< MatrixFrame > all;
      auto const addFrom = [ & ]( std::string const & from, bool isTunnelled ) {
         for ( FrameKind const kind : Chip::kFrameKinds ) {
            for ( HostPlace const & target : kPorts ) {
               if ( !isForSeveral( kind ) || target.host == kPorts.front().host ) {
                  all.push_back( { from, isTunnelled, kind, target } );
               }
            }
         }
      };
      for ( int const number : kVteps ) {
         addFrom( vtep( number ), true );
      }
      for ( HostPlace const & port : kPorts ) {
         addFrom( port.place, false );
      }
      return all;
   }

   // --- What must be, from what is published

   bool isShared( std::string const & place, std::string const & vtepText ) const {
      return std::any_of( scenario.published.begin(), scenario.published.end(),
                          [ & ]( Scenario::Change const & change ) {
                             auto const * const shared =
                                std::get_if< Scenario::SegmentVtep >( &change.what );
                             return shared && shared->intf.stringValue() == place &&
                                    shared->vtep.stringValue() == vtepText;
                          } );
   }

   Places expectedFor( MatrixFrame const & frame ) const {
      if ( !isForSeveral( frame.kind ) ) {
         bool const isBridgedBack =
            frame.kind == FrameKind::KnownUnicast && frame.target.place == frame.from;
         return isBridgedBack ? Places() : Places{ frame.target.place };
      }
      Places places;
      for ( HostPlace const & port : kPorts ) {
         bool const isKept = frame.isTunnelled && ( isShared( port.place, frame.from ) ||
                                                    ( isBackup() && port.place == "Ethernet5" ) );
         if ( port.place != frame.from && !isKept ) {
            places.insert( port.place );
         }
      }
      for ( int const number : kVteps ) {
         if ( !frame.isTunnelled ) {
            places.insert( vtep( number ) );
         }
      }
      return places;
   }

   static Places reached( Chip::FrameStory const & frame ) {
      Places places;
      for ( Chip::Copy const & copy : frame.copies ) {
         if ( copy.verdict == Chip::Verdict::Sent ) {
            places.insert( copy.remoteVtep ? copy.remoteVtep->stringValue()
                                           : copy.intfId.stringValue() );
         }
      }
      return places;
   }
};

TEST_P( Matrix, ReachesEveryPortButThoseThatTheSenderHasReachedItself ) {
   auto const matrix = frames();
   std::string text = switchText() + learningSteps();
   for ( MatrixFrame const & frame : matrix ) {
      text += stepOf( frame );
   }
   runText( text );

   auto const told = story.all< Story::FrameForwarded >();
   ASSERT_EQ( told.size(), matrix.size() + kPorts.size() );
   for ( std::size_t n = 0; n < matrix.size(); ++n ) {
      MatrixFrame const & frame = matrix[ n ];
      Chip::FrameStory const & forwarded = told[ n + kPorts.size() ].frame;
      SCOPED_TRACE( stepOf( frame ) );
      if ( frame.target.place != frame.from || isForSeveral( frame.kind ) ) {
         EXPECT_EQ( forwarded.kind, frame.kind );
      }
      EXPECT_EQ( reached( forwarded ), expectedFor( frame ) );
   }
   EXPECT_GT( matrix.size(), 80U );
}

std::string nameOfMatrix( testing::TestParamInfo< Matrix::ParamType > const & info ) {
   auto const & [ variant, family, isBackup ] = info.param;
   return std::string( variant == "class-id" ? "ClassId" : "EgressMask" ) + family.name +
          ( isBackup ? "Backup" : "Designated" );
}

INSTANTIATE_TEST_SUITE_P( LocalBias, Matrix,
                          testing::Combine( testing::Values( "egress-mask", "class-id" ),
                                            testing::Values( kIpv4, kIpv6 ), testing::Bool() ),
                          nameOfMatrix );

}  // namespace
