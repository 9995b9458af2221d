// Any sequence of events that is not one of the known limits (EgressMaskLimits_test.cpp), against
// what should be programmed: the VTEPs that share a segment and have a virtual port have one rule
// each, which masks the shared ports of its unit, and the exemptions are there while they have.
//
// One unit with room enough, ports that are valid and never given to another interface, and members
// of port channels that carry no segment of their own.

#include <gtest/gtest.h>

#include <map>
#include <ostream>

#include <Snapshot/Rules.h>
#include <rapidcheck/gtest.h>

#include "../support/LocalBiasSwitch.h"

namespace EgressMaskModelTest {

using Support::ip;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::Variant;
using Support::vtep;

struct Step {
   enum Kind { Port, NoPort, Join, Leave, Share, Unshare, NoSegment, Vport, NoVport } kind;
   U32 intf;      // Ethernet1 to 3 are members of port channels, Ethernet4 carries a segment
   U32 lag;       // Port-Channel1 and 2
   U32 vtep;      // 10.0.0.2 to 10.0.0.4
   bool isOnLag;  // whether the segment is on the port channel
   U16 number;    // which of the interface's ports, or of the VTEP's virtual ports
};

std::string intfName( U32 intf ) {
   return "Ethernet" + std::to_string( intf );
}
std::string lagName( U32 lag ) {
   return "Port-Channel" + std::to_string( lag );
}
std::string vtepName( U32 vtep ) {
   return "10.0.0." + std::to_string( vtep );
}
std::string segmentOf( Step const & step ) {
   return step.isOnLag ? lagName( step.lag ) : "Ethernet4";
}
U16 portOf( Step const & step ) {
   return static_cast< U16 >( step.intf * 10 + step.number );
}
U32 virtualPortOf( Step const & step ) {
   return 0x10000U + step.vtep * 10 + step.number;
}
U32 memberOf( Step const & step ) {
   return step.intf == 4 ? 1 : step.intf;
}

std::ostream & operator<<( std::ostream & out, Step const & step ) {
   std::string const segment = segmentOf( step );
   std::string const member = intfName( memberOf( step ) );
   std::string const address = vtepName( step.vtep );
   switch ( step.kind ) {
   case Step::Port: return out << intfName( step.intf ) << " gets port " << portOf( step );
   case Step::NoPort: return out << intfName( step.intf ) << " loses its port";
   case Step::Join: return out << member << " joins " << lagName( step.lag );
   case Step::Leave: return out << member << " leaves its port channel";
   case Step::Share: return out << segment << " is shared with " << address;
   case Step::Unshare: return out << segment << " is not shared with " << address;
   case Step::NoSegment: return out << segment << " has no segment";
   case Step::Vport: return out << address << " has virtual port " << virtualPortOf( step );
   case Step::NoVport: return out << address << " has no virtual port";
   }
   return out;
}

rc::Gen< Step > anyStep() {
   auto const kind = rc::gen::weightedElement< Step::Kind >( { { 4, Step::Port },
                                                               { 2, Step::NoPort },
                                                               { 4, Step::Join },
                                                               { 2, Step::Leave },
                                                               { 5, Step::Share },
                                                               { 2, Step::Unshare },
                                                               { 1, Step::NoSegment },
                                                               { 4, Step::Vport },
                                                               { 1, Step::NoVport } } );
   return rc::gen::construct< Step >( kind, rc::gen::inRange( 1U, 5U ), rc::gen::inRange( 1U, 3U ),
                                      rc::gen::inRange( 2U, 5U ), rc::gen::arbitrary< bool >(),
                                      rc::gen::inRange< U16 >( 0, 4 ) );
}

void play( LocalBiasSwitch & leaf, Step const & step ) {
   switch ( step.kind ) {
   case Step::Port: leaf.interfaceIs( intfName( step.intf ), 0, portOf( step ) ); break;
   case Step::NoPort: leaf.interfaceDel( intfName( step.intf ) ); break;
   case Step::Join: leaf.memberIs( lagName( step.lag ), intfName( memberOf( step ) ) ); break;
   case Step::Leave: leaf.memberDel( intfName( memberOf( step ) ) ); break;
   case Step::Share: leaf.segmentIs( segmentOf( step ), { vtepName( step.vtep ) } ); break;
   case Step::Unshare:
      if ( auto const segment =
              leaf.evpnStatus->segmentStatus( Support::intf( segmentOf( step ) ) ) ) {
         segment->remoteTepDel( ip( vtepName( step.vtep ) ) );
      }
      break;
   case Step::NoSegment: leaf.segmentDel( segmentOf( step ) ); break;
   case Step::Vport: leaf.vtepIs( vtepName( step.vtep ), virtualPortOf( step ) ); break;
   case Step::NoVport: leaf.vtepDel( vtepName( step.vtep ) ); break;
   }
}

// The ports shared with the VTEP, worked out from what is published.
Brum::PerUnitBitmap sharedPorts( LocalBiasSwitch const & leaf, std::string const & address ) {
   Brum::PerUnitBitmap ports;
   for ( auto intf = leaf.vcsd->vornalIntfToPortIter(); intf; ++intf ) {
      auto const config = leaf.lagConfig->phyIntf( intf.key() );
      auto const segment = leaf.evpnStatus->segmentStatus( config ? config->lag() : intf.key() );
      if ( segment && segment->remoteTepHas( ip( address ) ) ) {
         ports.bitSet( intf.value().logicalPort() );
      }
   }
   return ports;
}

// The written rules with a source port, by that: what they mask.
std::map< U32, Brum::PerUnitBitmap > masksOf( LocalBiasSwitch const & leaf ) {
   std::map< U32, Brum::PerUnitBitmap > masks;
   for ( Chip::Rule const & rule : Chip::rulesOf( leaf.board.units() ) ) {
      if ( auto const & gport = rule.content[ Chip::Qualifier::SrcVxlanGport ] ) {
         RC_ASSERT( rule.isWritten );
         masks[ gport->data ] = rule.content[ Chip::Action::EgressMask ]->ports;
      }
   }
   return masks;
}

void expectWhatShouldBe( LocalBiasSwitch & leaf, Machine const & sm ) {
   std::map< U32, Brum::PerUnitBitmap > expected;
   for ( U32 number = 2; number < 5; ++number ) {
      std::string const address = vtepName( number );
      bool const hasRule = leaf.dir->tepSegmentHas( ip( address ) ) &&
                           leaf.vpIndexStatus->remoteVportHas( vtep( address ) );
      RC_ASSERT( sm->unitUsesTcamsForTepIp( 0, ip( address ) ) == hasRule );
      if ( hasRule ) {
         auto const record = sm->tepIpToEntry( 0U );
         auto const vpIndex =
            static_cast< U16 >( leaf.vpIndexStatus->remoteVport( vtep( address ) ) );
         RC_ASSERT( record->esPbmp( ip( address ) ) == sharedPorts( leaf, address ) );
         RC_ASSERT( record->vpIndex( ip( address ) ) == vpIndex );
         expected[ Shim::sdk_->vxlanGport( vpIndex ) ] = sharedPorts( leaf, address );
      }
   }
   RC_ASSERT( masksOf( leaf ) == expected );
   RC_ASSERT( sm->tepIpToEntryHas( 0 ) == !expected.empty() );
   RC_ASSERT( leaf.board.entryManager( Vornal::kIfpLocalBiasGroup )->used( 0 ) ==
              expected.size() + ( expected.empty() ? 0 : 2 ) );
}

RC_GTEST_PROP( EgressMaskModel, IsWhatAnySequenceOfEventsLeadsTo, () ) {
   auto const steps = *rc::gen::container< std::vector< Step > >( anyStep() );
   LocalBiasSwitch leaf;
   Trace::levelsIs( "VornalEvpnSm", "" );
   auto const sm = leaf.machineNew( Variant::EgressMask );
   for ( Step const & step : steps ) {
      play( leaf, step );
      expectWhatShouldBe( leaf, sm );
   }
}

}  // namespace EgressMaskModelTest
