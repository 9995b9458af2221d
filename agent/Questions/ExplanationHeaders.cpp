#include <Questions/ExplanationParts.h>

#include <fmt/format.h>

namespace Questions {

namespace {

using Story::Node;

std::string protocolText( U8 protocol ) {
   switch ( protocol ) {
   case 1: return "ICMP";
   case 6: return "TCP";
   case 17: return "UDP";
   case 58: return "ICMPv6";
   case 132: return "SCTP";
   default: return fmt::format( "protocol {}", protocol );
   }
}

Node ethernetNode( std::string const & which, Chip::HeaderFields const & header ) {
   constexpr U16 kVlanMask = 0xfff;
   Node node{ which + "-ethernet",
              fmt::format( "{} Ethernet: {} to {}, EtherType {:#06x}", which,
                           header.source.stringValue(), header.destination.stringValue(),
                           header.etherType ),
              { { "source", header.source.stringValue() },
                { "destination", header.destination.stringValue() },
                { "etherType", U64{ header.etherType } } } };
   if ( header.tag ) {
      U64 const vlan = *header.tag & kVlanMask;
      node.text += fmt::format( ", VLAN tag {}", vlan );
      node.values.push_back( { "vlan", vlan } );
   }
   return node;
}

Node ipNode( std::string const & which, Chip::HeaderFields const & header ) {
   Chip::IpFields const & ip = *header.ip;
   bool const isIpv4 = ip.source.family() == Pelk::IpGenAddr::Family::ipv4;
   Node node{ which + "-ip",
              fmt::format( "{} {}: {} to {}, {}, {} {}", which, isIpv4 ? "IPv4" : "IPv6",
                           ip.source.stringValue(), ip.destination.stringValue(),
                           protocolText( ip.protocol ), isIpv4 ? "TTL" : "hop limit",
                           ip.timeToLive ),
              { { "source", ip.source.stringValue() },
                { "destination", ip.destination.stringValue() },
                { "protocol", U64{ ip.protocol } },
                { "timeToLive", U64{ ip.timeToLive } } } };
   if ( header.ports ) {
      node.text +=
         fmt::format( ", port {} to {}", header.ports->source, header.ports->destination );
      node.values.push_back( { "sourcePort", U64{ header.ports->source } } );
      node.values.push_back( { "destinationPort", U64{ header.ports->destination } } );
   }
   if ( ip.isFragment ) {
      node.text += ", a fragment";
   }
   if ( ip.fault != Chip::IpFault::None ) {
      node.text += ", not whole or malformed";
   } else if ( !ip.isChecksumRight ) {
      node.text += ", wrong checksum";
   }
   return node;
}

Node arpNode( Chip::ArpFields const & arp ) {
   constexpr U16 kRequest = 1;
   bool const isRequest = arp.operation == kRequest;
   return { "arp",
            fmt::format( "ARP {}: {} ({}) {} {}", isRequest ? "request" : "reply",
                         arp.senderIp.stringValue(), arp.senderMac.stringValue(),
                         isRequest ? "asks for" : "answers", arp.targetIp.stringValue() ),
            { { "operation", U64{ arp.operation } },
              { "sender", arp.senderIp.stringValue() },
              { "target", arp.targetIp.stringValue() } } };
}

void addHeader( std::string const & which, std::optional< Chip::HeaderFields > const & header,
                Node & headers ) {
   if ( !header ) {
      return;
   }
   headers.add( ethernetNode( which, *header ) );
   if ( header->ip ) {
      headers.add( ipNode( which, *header ) );
   }
   if ( header->arp ) {
      headers.add( arpNode( *header->arp ) );
   }
}

}  // namespace

void addHeaders( Chip::DecodedFrame const & headers, Node & frame ) {
   Node & node = frame.add( { "headers", "headers" } );
   addHeader( "outer", headers.outer, node );
   if ( headers.vxlan ) {
      node.add(
         { "vxlan",
           fmt::format( "VXLAN: VNI {}, flags {:#04x}", headers.vxlan->vni, headers.vxlan->flags ),
           { { "vni", U64{ headers.vxlan->vni } }, { "flags", U64{ headers.vxlan->flags } } } } );
   }
   addHeader( headers.outer ? "inner" : "plain", headers.inner, node );
}

}  // namespace Questions
