// Any text is set by the path of an attribute, or is refused with its place and leaves everything
// as it was. What was set reads back as a text that can be set again and changes nothing; what was
// deleted is gone. For libFuzzer; fuzz/README.md has the command.
//
// Each four lines of the input are one step: the path of the entity, the attribute, the key, the
// value. A path behind a minus sign is for a deletion.
#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

#include <Property.h>
#include <PublishedSwitch.h>
#include <Quelm/Error.h>
#include <Quelm/Text.h>
#include <Steps/Delete.h>
#include <Steps/Set.h>

namespace {

using Fuzz::mustHold;
using Fuzz::PublishedSwitch;

constexpr std::size_t kMostSteps = 8;

char const * const kScenario =
   "scenario: fuzzed\n"
   "switch:\n"
   "  name: leaf1\n"
   "  variant: egress-mask\n"
   "  units: { 0: { module: 1 } }\n"
   "  class-ids: { first: 1, last: 4 }\n"
   "  interfaces: { Ethernet1: { unit: 0, port: 1 }, Ethernet2: { unit: 0, port: 2 } }\n"
   "  port-channels: { Port-Channel1: [ Ethernet2 ] }\n"
   "evpn:\n"
   "  segments: { Ethernet1: [ 10.0.0.2 ], Port-Channel1: [ 10.0.0.3 ] }\n"
   "  vteps: { 10.0.0.2: { virtual-port: 2 }, 10.0.0.3: { virtual-port: 3 } }\n"
   "  tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001 } } }\n";

// --- The input

struct Line {
   bool isDeletion = false;
   std::string entity;
   std::string attribute;
   std::string key;
   std::string value;
};

std::string takeLine( std::string_view & text ) {
   std::string const line( text.substr( 0, text.find( '\n' ) ) );
   text.remove_prefix( std::min( line.size() + 1, text.size() ) );
   return line;
}

std::vector< Line > linesOf( std::string_view text ) {
   std::vector< Line > lines;
   while ( !text.empty() && lines.size() < kMostSteps ) {
      Line line;
      line.isDeletion = text.starts_with( '-' );
      text.remove_prefix( line.isDeletion ? 1 : 0 );
      line.entity = takeLine( text );
      line.attribute = takeLine( text );
      line.key = takeLine( text );
      line.value = takeLine( text );
      lines.push_back( line );
   }
   return lines;
}

// --- One step

// Whether it was carried out. A refusal has its place, and has changed nothing.
bool isDone( PublishedSwitch & device, Scenario::Action const & step ) {
   auto const before = device.state();
   try {
      device.carryOut( step );
      return true;
   } catch ( Story::InputError const & error ) {
      mustHold( std::string_view( error.what() ).starts_with( "fuzzed.yaml:1: " ),
                "a refusal has its place: " + std::string( error.what() ) );
      mustHold( device.state() == before, "what is refused changes nothing" );
      return false;
   }
}

// What can be written is set again to the text that it has.
void setAgain( PublishedSwitch & device, Steps::Set step, Kiv::Attribute const & attribute,
               Kiv::Entity const & entity ) {
   auto const before = device.state();
   step.value = attribute.text( entity, step.at.key );
   mustHold( isDone( device, step ), "a text that was read can be set: " + step.value );
   mustHold( device.state() == before, "a text that was read is the value: " + step.value );
}

void checkSet( PublishedSwitch & device, Steps::Set const & step ) {
   using Kind = Kiv::Attribute::Kind;
   auto const entity = device.finder().entity( step.at.entity );
   auto const & attribute = StateDatabase::attributeOf( *entity, step.at.attribute );
   mustHold( !attribute.isKeyed() || attribute.has( *entity, step.at.key ),
             "what was set is there" );
   if ( attribute.kind() == Kind::Value || attribute.kind() == Kind::Collection ) {
      setAgain( device, step, attribute, *entity );
   }
}

void checkDeleted( PublishedSwitch const & device, Steps::Delete const & step ) {
   auto const entity = device.finder().entity( step.at.entity );
   auto const & attribute = StateDatabase::attributeOf( *entity, step.at.attribute );
   mustHold( !attribute.isKeyed() || !attribute.has( *entity, step.at.key ),
             "what was deleted is gone" );
}

void carryOut( PublishedSwitch & device, Line const & line ) {
   Scenario::AttributeAt at;
   try {
      at = { StateDatabase::EntityPath::fromString( line.entity ), line.attribute, line.key };
   } catch ( Quelm::TextError const & ) {
      return;
   }
   if ( line.isDeletion ) {
      Steps::Delete step;
      step.at = at;
      if ( isDone( device, step ) ) {
         checkDeleted( device, step );
      }
      return;
   }
   Steps::Set step;
   step.at = at;
   step.value = line.value;
   if ( isDone( device, step ) ) {
      checkSet( device, step );
   }
}

}  // namespace

// What is told of a key that is left out, or of feature files, is not looked at.
extern "C" int LLVMFuzzerInitialize( int *, char *** ) {
   std::cerr.rdbuf( nullptr );
   return 0;
}

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   static Scenario::Model const scenario = Steps::readScenarioText( kScenario, "fuzzed.yaml" );
   PublishedSwitch device( scenario );
   for ( Line const & line : linesOf( Fuzz::textOf( data, size ) ) ) {
      carryOut( device, line );
   }
   return 0;
}
