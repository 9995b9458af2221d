#include <Scenario/Forms.h>

#include <fmt/format.h>

namespace Scenario {

namespace {

using Json = nlohmann::ordered_json;

// --- Patterns (ECMA 262)

// The number in an interface's name, 0 to 65534.
constexpr std::string_view kNumber =
   "(6553[0-4]|655[0-2][0-9]|65[0-4][0-9]{2}|6[0-4][0-9]{3}|[1-5][0-9]{4}|[1-9][0-9]{0,3}|0)";
// Four hexadecimal digits of an IPv6 address (RFC 4291, section 2.2).
constexpr std::string_view kGroup = "[0-9a-fA-F]{1,4}";

std::string ethernet() {
   return fmt::format( "Ethernet{0}(/{0}){{0,2}}", kNumber );
}

std::string portChannel() {
   return fmt::format( "Port-Channel{}", kNumber );
}

std::string ipv4() {
   return fmt::format( "{0}(\\.{0}){{3}}", "(25[0-5]|2[0-4][0-9]|1[0-9]{2}|[1-9]?[0-9])" );
}

// The address with "::" behind `before` groups.
std::string shortened( int before ) {
   constexpr int kMostGroups = 7;
   std::string text;
   if ( before > 0 ) {
      text += kGroup;
   }
   if ( before > 1 ) {
      text += fmt::format( "(:{}){{{}}}", kGroup, before - 1 );
   }
   text += "::";
   int const after = kMostGroups - before;
   if ( after > 0 ) {
      std::string const ending =
         after > 1 ? fmt::format( "|({}:){{0,{}}}{}", kGroup, after - 2, ipv4() ) : "";
      text += fmt::format( "({0}(:{0}){{0,{1}}}{2})?", kGroup, after - 1, ending );
   }
   return text;
}

std::string ipv6() {
   std::string text = fmt::format( "({0}:){{7}}{0}|({0}:){{6}}{1}", kGroup, ipv4() );
   for ( int before = 0; before <= 7; ++before ) {
      text += '|' + shortened( before );
   }
   return text;
}

// One trace level, or a range of them.
std::string levelRange() {
   std::string text = "0(-[0-9])?";
   for ( int lowest = 1; lowest < 9; ++lowest ) {
      text += fmt::format( "|{0}(-[{0}-9])?", lowest );
   }
   return text + "|9(-9)?";
}

// The whole text matches.
Json whole( std::string const & pattern, std::string_view description ) {
   return { { "type", "string" },
            { "pattern", "^" + pattern + "$" },
            { "description", description } };
}

// --- Texts and numbers

constexpr std::string_view kPlainForms = R"({
   "text": {
      "description": "A text. It needs quotes where YAML would read something else.",
      "type": [ "string", "number", "boolean" ],
      "minLength": 1
   },
   "slice": {
      "description": "The part of the switch that the agent drives; it is part of mount paths. 1 if left out.",
      "type": [ "string", "number", "boolean" ],
      "pattern": "^[^/ ]+$"
   },
   "yes-or-no": { "type": "boolean" },
   "count": { "type": "integer", "minimum": 0, "maximum": 4294967295 },
   "entries": {
      "anyOf": [ { "type": "integer", "minimum": 0, "maximum": 65536 }, { "const": "none" } ]
   },
   "unit-number": { "type": "integer", "minimum": 0, "maximum": 65535 },
   "unit-key": {
      "description": "The number of a unit, 0 to 65535.",
      "pattern": "^(0x0*[0-9a-fA-F]{1,4}|(6553[0-5]|655[0-2][0-9]|65[0-4][0-9]{2}|6[0-4][0-9]{3}|[1-5][0-9]{4}|[1-9][0-9]{0,3}|0))$"
   },
   "logical-port": { "type": "integer", "minimum": 0, "maximum": 351 },
   "vlan-number": { "type": "integer", "minimum": 1, "maximum": 4094 },
   "vlan-key": {
      "description": "A VLAN, 1 to 4094.",
      "pattern": "^(0x0*([1-9a-eA-E][0-9a-fA-F]{0,2}|[fF]|[fF][0-9a-fA-F]|[fF][0-9a-eA-E][0-9a-fA-F]|[fF]{2}[0-9a-eA-E])|409[0-4]|40[0-8][0-9]|[1-3][0-9]{3}|[1-9][0-9]{0,2})$"
   },
   "field-number": {
      "description": "The one number that a qualifier or an action has; nothing where any will do.",
      "anyOf": [
         { "$ref": "#/definitions/count" },
         {
            "type": "array",
            "items": { "$ref": "#/definitions/count" },
            "minItems": 1,
            "maxItems": 1
         },
         { "type": "null" }
      ]
   },
   "path": {
      "description": "The path of an entity: /evpn/status/segmentStatus[Port-Channel2].",
      "type": "string",
      "pattern": "^(/[A-Za-z0-9_.:@#-]+(\\[(\"(\\\\[^]|[^\"\\\\])*\"|[^\\]\"])+\\])?)+$"
   },
   "of-udp": {
      "description": "The frame has a UDP datagram.",
      "allOf": [ { "required": [ "content" ] }, { "properties": { "content": { "const": "udp" } } } ]
   }
})";

Json levels() {
   return { { "description", "Trace levels, as 0-5,9." },
            { "anyOf",
              { { { "type", "integer" }, { "minimum", 0 }, { "maximum", 9 } },
                { { "type", "string" },
                  { "pattern", fmt::format( "^({0})(,({0}))*$", levelRange() ) } } } } };
}

// --- Interfaces

Json interfaceForms() {
   return {
      { "ethernet", whole( ethernet(), "An Ethernet interface, as Ethernet1 or Ethernet3/1." ) },
      { "port-channel", whole( portChannel(), "A port channel, as Port-Channel1." ) },
      { "vxlan", whole( fmt::format( "Vxlan{}", kNumber ), "A tunnel interface, as Vxlan1." ) },
      { "segment-interface", whole( fmt::format( "({}|{})", ethernet(), portChannel() ),
                                    "An Ethernet interface or a port channel." ) },
      { "ethernets", Json::parse( R"({
           "type": "array",
           "items": { "$ref": "#/definitions/ethernet" },
           "uniqueItems": true
        })" ) }
   };
}

// --- Addresses

constexpr std::string_view kVtepAddress = R"({
   "description": "The address of a VTEP: one that packets can be sent to over a network.",
   "allOf": [
      { "$ref": "#/definitions/address" },
      { "not": { "pattern": "^(0|127|22[4-9]|2[345][0-9])\\.|^169\\.254\\." } },
      { "not": { "pattern": "^[fF]([fF][0-9a-fA-F]{2}|[eE][89abAB][0-9a-fA-F]):|^[0:.]*:([0:.]*|[0:.]*[:.]0{0,3}1|0{0,3}1)$" } },
      {
         "description": "No IPv4 address in the form of IPv6, ::ffff:10.0.0.2.",
         "not": { "pattern": "^(0{1,4}(:0{1,4})*)?::(0{1,4}:)*[fF]{4}:([0-9a-fA-F]{1,4}:[0-9a-fA-F]{1,4}|[0-9]+\\.[0-9.]+)$|^(0{1,4}:){5}[fF]{4}:" }
      }
   ]
})";

constexpr std::string_view kMulticastGroup = R"({
   "description": "A multicast address, as 239.1.1.1 or ff0e::101.",
   "allOf": [
      { "$ref": "#/definitions/address" },
      { "pattern": "^(22[4-9]|23[0-9])\\.|^[fF][fF][0-9a-fA-F]{2}:" }
   ]
})";

constexpr std::string_view kOtherAddresses = R"({
   "address": { "anyOf": [ { "$ref": "#/definitions/ipv4" }, { "$ref": "#/definitions/ipv6" } ] },
   "vtep-addresses": {
      "type": "array",
      "description": "Addresses of VTEPs.",
      "items": { "$ref": "#/definitions/vtep-address" },
      "uniqueItems": true
   },
   "mac": { "type": "string", "pattern": "^([0-9a-fA-F]{2}:){5}[0-9a-fA-F]{2}$" },
   "station-mac": {
      "description": "The MAC address of one station, not of several.",
      "allOf": [ { "$ref": "#/definitions/mac" }, { "pattern": "^.[02468aceACE]:" } ]
   }
})";

Json addressForms() {
   Json all{ { "ipv4", whole( ipv4(), "An IPv4 address, as 10.0.0.2." ) },
             { "ipv6", whole( "(" + ipv6() + ")", "An IPv6 address, as 2001:db8::2." ) },
             { "vtep-address", Json::parse( kVtepAddress ) },
             { "multicast-group", Json::parse( kMulticastGroup ) } };
   all.update( Json::parse( kOtherAddresses ) );
   return all;
}

// --- Collections of published state

constexpr std::string_view kCollectionForms = R"({
   "interfaces": {
      "type": "object",
      "description": "Ethernet interfaces, and the chip port of each. An empty mapping, {}, defines an interface that has no port on the agent's chips, or none yet.",
      "propertyNames": { "$ref": "#/definitions/ethernet" },
      "additionalProperties": {
         "anyOf": [
            { "$ref": "#/definitions/interface" },
            { "type": "object", "maxProperties": 0 }
         ]
      }
   },
   "port-channels": {
      "type": "object",
      "description": "Port channels (LAGs) and their members.",
      "propertyNames": { "$ref": "#/definitions/port-channel" },
      "additionalProperties": { "$ref": "#/definitions/ethernets" }
   },
   "segments": {
      "type": "object",
      "description": "Ethernet segments by the interface that they are on, with the remote VTEPs attached to each.",
      "propertyNames": { "$ref": "#/definitions/segment-interface" },
      "additionalProperties": { "$ref": "#/definitions/vtep-addresses" }
   },
   "vteps": {
      "type": "object",
      "description": "Remote VTEPs by address.",
      "propertyNames": { "$ref": "#/definitions/vtep-address" },
      "additionalProperties": { "$ref": "#/definitions/vtep" }
   },
   "tunnel-interfaces": {
      "type": "object",
      "description": "VXLAN tunnel interfaces.",
      "propertyNames": { "$ref": "#/definitions/vxlan" },
      "additionalProperties": { "$ref": "#/definitions/tunnel-interface" }
   },
   "class-id-grants": {
      "type": "object",
      "description": "Class ids that the allocator grants, by remote VTEP; 65535 is no class id.",
      "propertyNames": { "$ref": "#/definitions/vtep-address" },
      "additionalProperties": { "type": "integer", "minimum": 0, "maximum": 65535 }
   }
})";

}  // namespace

Json forms() {
   Json all = Json::parse( kPlainForms );
   all[ "levels" ] = levels();
   all.update( interfaceForms() );
   all.update( addressForms() );
   all.update( Json::parse( kCollectionForms ) );
   return all;
}

}  // namespace Scenario
