#include <FrameSet.h>

#include <chrono>

#include <Capture/CaptureWriter.h>
#include <Quelm/Text.h>

namespace Frames {

namespace {

using Chip::FrameContent;
using Chip::FrameFields;
using Chip::MacAddress;
using Reference::To;

constexpr unsigned kStations = kInterfaces.size() + kVteps.size();
constexpr unsigned kVlan = 10;  // into which the routes lead

MacAddress macOf( unsigned station ) {
   return MacAddress( 0x00005e005340 + station );
}

Pelk::IpGenAddr ipOf( unsigned station ) {
   return Pelk::IpGenAddr::fromString( "192.0.2." + std::to_string( 10 + station ) );
}

// A frame of one station to one receiver, wherever it is sent.
struct Letter {
   To to;
   unsigned station = kStations;  // the receiver
   FrameFields fields{};
};

Letter packet( To to, std::uint64_t mac, Pelk::IpGenAddr const & ip, unsigned station = 0 ) {
   return { to,
            station,
            { .destination = MacAddress( mac ),
              .content = FrameContent::Udp,
              .sourceIp = Pelk::IpGenAddr::fromString( "192.0.2.1" ),
              .destinationIp = ip } };
}

std::vector< Letter > lettersOf( unsigned sender ) {
   constexpr std::uint64_t kRouter = 0x020000000001;
   std::vector< Letter > all{
      { To::everybody },
      { To::everybody,
        0,
        { .content = FrameContent::Arp, .sourceIp = ipOf( sender ), .destinationIp = ipOf( 0 ) } },
      { To::group, 0, { .destination = MacAddress( 0x01005e010108 ) } },
      packet( To::group, 0x01005e010109, Pelk::IpGenAddr::fromString( "239.1.1.9" ) ),
      packet( To::routedGroup, 0x01005e010101, Pelk::IpGenAddr::fromString( "239.1.1.1" ) ),
      { To::station, kStations, { .destination = macOf( kStations ) } },
      packet( To::router, kRouter, ipOf( kStations ), kStations ),
   };
   for ( unsigned station = 0; station < kStations; ++station ) {
      if ( station != sender ) {
         all.push_back( { To::station, station, { .destination = macOf( station ) } } );
         all.push_back( packet( To::router, kRouter, ipOf( station ), station ) );
      }
   }
   return all;
}

Sent sent( unsigned sender, Letter const & letter, Reference::Frame const & frame ) {
   Sent sent{ { frame, macOf( sender ).value(), letter.to }, letter.fields };
   sent.fields.source = macOf( sender );
   if ( letter.station < kStations ) {
      sent.sending.station = macOf( letter.station ).value();
   }
   sent.sending.routedInto = kVlan;
   return sent;
}

Arriving fromInterface( unsigned station ) {
   std::string const name = kInterfaces.at( station );
   Arriving arriving{ Pelk::IntfId::fromString( name ), {}, {} };
   for ( unsigned const vlan : { 10U, 20U } ) {
      for ( Letter const & letter : lettersOf( station ) ) {
         Reference::Frame frame;
         frame.arrival = Reference::Interface( name );
         frame.vlan = vlan;
         arriving.frames.push_back( sent( station, letter, frame ) );
         if ( vlan != kVlan ) {
            arriving.frames.back().fields.vlan = static_cast< U16 >( vlan );
         }
      }
   }
   return arriving;
}

// The last of the VNIs has no VLAN.
void addFramesFrom( unsigned vtep, Arriving & arriving ) {
   std::string const address = kVteps.at( vtep );
   auto const source = Pelk::IpGenAddr::fromString( address );
   bool const isIpv4 = source.family() == Pelk::IpGenAddr::Family::ipv4;
   auto const own = Pelk::IpGenAddr::fromString( isIpv4 ? "10.0.0.1" : "2001:db8::1" );
   auto const station = static_cast< unsigned >( kInterfaces.size() ) + vtep;
   for ( unsigned const vni : { 10100U, 50001U, 50002U } ) {
      for ( Letter const & letter : lettersOf( station ) ) {
         Reference::Frame frame;
         frame.sender = Reference::Vtep( address );
         frame.arrival = Reference::Interface( "Ethernet49" );
         frame.vni = vni;
         Sent one = sent( station, letter, frame );
         one.fields.outer = { .sourceVtep = source, .destinationVtep = own, .vni = vni };
         arriving.frames.push_back( one );
      }
   }
}

}  // namespace

std::vector< Arriving > framesIn( std::filesystem::path const & folder ) {
   std::vector< Arriving > all;
   for ( unsigned station = 0; station < kInterfaces.size(); ++station ) {
      all.push_back( fromInterface( station ) );
   }
   all.push_back( { Pelk::IntfId::fromString( "Ethernet49" ), {}, {} } );
   for ( unsigned vtep = 0; vtep < kVteps.size(); ++vtep ) {
      addFramesFrom( vtep, all.back() );
   }
   for ( Arriving & arriving : all ) {
      arriving.capture = folder / ( arriving.on.stringValue() + ".pcap" );
      Chip::CaptureWriter writer( arriving.capture );
      for ( Sent const & one : arriving.frames ) {
         writer.write( std::chrono::nanoseconds( 0 ), Chip::bytesOf( one.fields ) );
      }
   }
   return all;
}

std::string forwarding() {
   std::string text =
      "forwarding:\n"
      "  vtep-addresses: [ 10.0.0.1, '2001:db8::1' ]\n"
      "  underlay: [ Ethernet49 ]\n"
      "  vlans: { 10: 10100, 20: 50001 }\n";
   std::string access;
   std::string trunk;
   for ( char const * const intf : kInterfaces ) {
      access += ( access.empty() ? "" : ", " ) + std::string( intf ) + ": 10";
      trunk += ( trunk.empty() ? "" : ", " ) + std::string( intf ) + ": [ 20 ]";
   }
   text += "  access: { " + access + " }\n  trunk: { " + trunk + " }\n  hosts:\n";
   for ( unsigned station = 0; station < kStations; ++station ) {
      text += "    " + ipOf( station ).stringValue() + ": { vlan: " + std::to_string( kVlan ) +
              ", mac: '" + macOf( station ).stringValue() + "' }\n";
   }
   return text + "  multicast-routes: [ 239.1.1.1 ]\n";
}

std::string stepOf( Arriving const & arriving, Sent const & sent ) {
   FrameFields const & fields = sent.fields;
   std::string text = "frame: { ";
   if ( fields.outer ) {
      text += "from: '" + fields.outer->sourceVtep.stringValue() +
              "', vni: " + std::to_string( fields.outer->vni );
   } else {
      text += "on: " + arriving.on.stringValue();
   }
   if ( fields.vlan ) {
      text += ", vlan: " + std::to_string( *fields.vlan );
   }
   text += ", source: '" + fields.source.stringValue() + "', destination: '" +
           fields.destination.stringValue() + "'";
   if ( fields.content != FrameContent::Bare ) {
      text += std::string( ", content: " ) +
              ( fields.content == FrameContent::Arp ? "arp" : "udp" ) +
              ", source-ip: " + fields.sourceIp->stringValue() +
              ", destination-ip: " + fields.destinationIp->stringValue();
   }
   return text + " }";
}

}  // namespace Frames
