#include <Scenario/Interfaces.h>

#include <algorithm>

#include <Brum/PerUnitBitmap.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>

namespace Scenario {

namespace {

using Kind = Pelk::IntfId::Kind;

// An interface of one of the kinds, which `expected` words.
std::optional< Pelk::IntfId > interfaceIn( Reading & reading, std::string const & text, int line,
                                           std::initializer_list< Kind > kinds,
                                           std::string const & expected ) {
   auto const intf = parsed< Pelk::IntfId >( reading, text, line );
   if ( !intf || std::find( kinds.begin(), kinds.end(), intf->kind() ) != kinds.end() ) {
      return intf;
   }
   reading.problem( line, intf->stringValue() + " cannot stand here; " + expected );
   return std::nullopt;
}

// --- interfaces

struct PortWords {
   std::optional< U32 > unit;
   std::optional< U32 > port;
};

constexpr U32 kHighestPort = Brum::PerUnitBitmap::kBits - 1;
constexpr U32 kInvalid = VornalTypes::VornalPort::kInvalidLogicalPort;

void readPort( Reading & reading, Value const & value, PortWords & words ) {
   words.port =
      numberIn( value ) == kInvalid
         ? std::optional( kInvalid )
         : numberOf( reading, value, 0, kHighestPort, ", or 1023 for a port that is not valid" );
}

Table< PortWords > const & interfaceTable() {
   static Table< PortWords > const table{
      { "interface", "The chip port of an interface." },
      { { { "unit", "unit: 0",
            Shape::of( "unit-number",
                       "The chip that the port is on; one of the switch's units." ) },
          readNumber< PortWords, &PortWords::unit, 0, 0xffff > },
        { { "port", "port: 1",
            Shape::anyOf( { Shape::number( 0, kHighestPort ), Shape::constant( kInvalid ) },
                          "The logical port, 0 to 351; 1023 for one that is not valid." ) },
          readPort } }
   };
   return table;
}

// The interface's port; nothing when it has none, or none that can be read.
std::optional< VornalTypes::VornalPort > portOf( Reading & reading, Value const & value ) {
   if ( value.node.IsMap() && value.node.size() == 0 ) {
      return std::nullopt;
   }
   PortWords words;
   readMapping( reading, value, interfaceTable(), words );
   if ( !words.unit || !words.port ) {
      return std::nullopt;
   }
   auto const unit = static_cast< U16 >( *words.unit );
   auto const module = reading.module( unit, value.line );
   return module ? std::optional(
                      VornalTypes::VornalPort( unit, static_cast< U16 >( *words.port ), *module ) )
                 : std::nullopt;
}

// --- port channels

using PortChannels = std::vector< Keyed< Pelk::IntfId > >;

// The members of each, none in two of them.
struct Member {
   Pelk::IntfId intf;
   Pelk::IntfId portChannel;
   int line;
};

std::vector< Member > readMembers( Reading & reading, PortChannels const & portChannels,
                                   Changes & changes ) {
   std::vector< Member > result;
   std::map< Pelk::IntfId, Pelk::IntfId > portChannelOf;
   for ( auto const & [ portChannel, members ] : portChannels ) {
      for ( auto const & [ member, line ] : distinctOf( reading, members, ethernetIn ) ) {
         reading.use( member, line );
         auto const [ other, isNew ] = portChannelOf.try_emplace( member, portChannel );
         if ( !isNew ) {
            reading.problem( line, member.stringValue() + " is in " + other->second.stringValue() +
                                      " already; an interface is in one port channel at most" );
         }
         changes.push_back( { PortChannelMember{ portChannel, member }, line } );
         result.push_back( { member, portChannel, line } );
      }
   }
   return result;
}

}  // namespace

std::optional< Pelk::IntfId > ethernetIn( Reading & reading, std::string const & text, int line ) {
   return interfaceIn( reading, text, line, { Kind::ethernet },
                       "an Ethernet interface is expected" );
}

std::optional< Pelk::IntfId > portChannelIn( Reading & reading, std::string const & text,
                                             int line ) {
   return interfaceIn( reading, text, line, { Kind::portChannel },
                       "a port channel is expected, as in Port-Channel1" );
}

std::optional< Pelk::IntfId > segmentIntfIn( Reading & reading, std::string const & text,
                                             int line ) {
   auto const intf = interfaceIn( reading, text, line, { Kind::ethernet, Kind::portChannel },
                                  "a segment is on an Ethernet interface or a port channel" );
   if ( intf ) {
      reading.use( *intf, line );
   }
   return intf;
}

std::optional< Pelk::IntfId > tunnelIntfIn( Reading & reading, std::string const & text,
                                            int line ) {
   return interfaceIn( reading, text, line, { Kind::vxlan },
                       "a tunnel interface is expected, as in Vxlan1" );
}

void readInterfaces( Reading & reading, Value const & value, Changes & changes ) {
   std::map< VornalTypes::VornalPort, Pelk::IntfId > intfOfPort;
   for ( auto const & [ intf, about ] :
         namedOf( reading, value, ethernetIn, kNamesOfInterfaces ) ) {
      reading.define( intf );
      auto const port = portOf( reading, about );
      if ( !port ) {
         continue;
      }
      auto const [ other, isNew ] = intfOfPort.try_emplace( *port, intf );
      if ( !isNew && port->isValid() ) {
         reading.problem( about.line, "port " + std::to_string( port->logicalPort() ) +
                                         " of unit " + std::to_string( port->unit() ) + " is " +
                                         other->second.stringValue() +
                                         "'s already; give each interface a port of its own" );
      }
      changes.push_back( { InterfacePort{ intf, *port }, about.line } );
   }
}

void readPortChannels( Reading & reading, Value const & value, Changes & changes ) {
   PortChannels const portChannels = namedOf( reading, value, portChannelIn, kNamesOfPortChannels );
   for ( auto const & portChannel : portChannels ) {
      reading.define( portChannel.key );
   }
   for ( Member const & member : readMembers( reading, portChannels, changes ) ) {
      reading.agreement().memberIs( member.intf, member.portChannel, member.line );
   }
}

void readWithdrawnInterfaces( Reading & reading, Value const & value, Changes & changes ) {
   for ( auto const & [ intf, line ] : distinctOf( reading, value, ethernetIn ) ) {
      reading.use( intf, line );
      changes.push_back( { InterfacePort{ intf, {} }, line } );
   }
}

void readWithdrawnMembers( Reading & reading, Value const & value, Changes & changes ) {
   PortChannels const portChannels = keyedOf( reading, value, portChannelIn );
   for ( auto const & portChannel : portChannels ) {
      reading.use( portChannel.key, portChannel.value.line );
   }
   for ( Member const & member : readMembers( reading, portChannels, changes ) ) {
      reading.agreement().memberGoes( member.intf );
   }
}

std::vector< WordList > interfaceVocabulary() {
   return { interfaceTable().list() };
}

}  // namespace Scenario
