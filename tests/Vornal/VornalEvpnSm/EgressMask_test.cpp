// The egress mask of a VTEP's entry: the order of the hardware calls for every event, and that the
// recorded mask is the one in the hardware.

#include <gtest/gtest.h>

#include "../support/LocalBiasSwitch.h"

namespace EgressMaskTest {

using Support::ingressRequest;
using Support::intf;
using Support::ip;
using Support::Lines;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::Variant;
using VornalTypes::VornalPortList;

// "unit U entry N: OPERATION", for what is the same on every unit.
Lines onUnit( U32 unit, Lines const & calls ) {
   Lines lines;
   for ( std::string const & call : calls ) {
      lines.push_back( "unit " + std::to_string( unit ) + " " + call );
   }
   return lines;
}
Lines operator+( Lines left, Lines const & right ) {
   left.insert( left.end(), right.begin(), right.end() );
   return left;
}

Lines const exemptionsInstalled{
   "entry 1: " + ingressRequest( Support::l2RuleName() ),
   "entry 1: bcm_field_qualify_PacketRes( data 4, mask 0xff ) = 0",
   "entry 1: bcm_field_qualify_TunnelTerminated( data 1, mask 0x1 ) = 0",
   "entry 1: installEntry( group 157 ) = 0",
   "entry 2: " + ingressRequest( Support::l3RuleName() ),
   "entry 2: bcm_field_qualify_PacketRes( data 10, mask 0xff ) = 0",
   "entry 2: bcm_field_qualify_TunnelTerminated( data 1, mask 0x1 ) = 0",
   "entry 2: installEntry( group 157 ) = 0",
};

// What makes the rule of a VTEP: its entry, address, VP index and masked ports.
Lines ruleInstalled( U32 id, std::string const & address, std::string const & vpIndex,
                     std::string const & ports ) {
   std::string const entry = "entry " + std::to_string( id ) + ": ";
   return {
      entry + ingressRequest( Support::vtepRuleName( address ) ),
      entry + "bcm_field_qualify_SrcVxlanGport( gport 0x5600" + vpIndex + " ) = 0",
      entry + "setPriorityForEntry( group 157, priority 1 ) = 0",
      entry + "addEgressMaskAction( group 157, ports " + ports + " ) = 0",
      entry + "installEntry( group 157 ) = 0",
   };
}

Lines released( U32 id ) {
   return { "entry " + std::to_string( id ) + ": releaseEntry( group 157 ) = 0" };
}
Lines reinstalled( U32 id, std::string const & ports ) {
   std::string const entry = "entry " + std::to_string( id ) + ": ";
   return { entry + "updateEgressMaskAction( group 157, ports " + ports + " ) = 0",
            entry + "reinstallEntry( group 157 ) = 0" };
}

// leaf1 of two units. Port-Channel2 has port 5 of unit 0 and port 6 of unit 1.
class EgressMask : public testing::Test {
 protected:
   EgressMask() {
      leaf.interfaceIs( "Ethernet5", 0, 5 );
      leaf.interfaceIs( "Ethernet6", 1, 6 );
      leaf.interfaceIs( "Ethernet7", 0, 7 );
      leaf.memberIs( "Port-Channel2", "Ethernet5" );
      leaf.memberIs( "Port-Channel2", "Ethernet6" );
      leaf.memberIs( "Port-Channel3", "Ethernet7" );
      leaf.vtepIs( "10.0.0.2", 0x70002 );
      leaf.vtepIs( "10.0.0.3", 0x70003 );
      sm = leaf.machineNew( Variant::EgressMask );
      leaf.forget();
   }

   // The hardware calls that were made, and that every record equals the mask in the hardware.
   void expectCalls( Lines const & expected ) {
      EXPECT_EQ( leaf.callLines(), expected );
      for ( U16 const unit : { U16{ 0 }, U16{ 1 } } ) {
         auto const record = sm->tepIpToEntry( U32{ unit } );
         for ( char const * const address : { "10.0.0.2", "10.0.0.3" } ) {
            if ( record && record->entryIdHas( ip( address ) ) ) {
               auto const read =
                  leaf.ingress->getEgressMaskActionPbmp( unit, record->entryId( ip( address ) ) );
               EXPECT_EQ( read.rc(), 0 );
               EXPECT_EQ( read.pbmp().words[ 0 ], record->esPbmp( ip( address ) ).word( 0 ) );
            }
         }
      }
      leaf.forget();
   }
   std::string mask( U32 unit, std::string const & address = "10.0.0.2" ) const {
      return Quelm::textOf( sm->tepIpToEntry( unit )->esPbmp( ip( address ) ) );
   }

   LocalBiasSwitch leaf{ 2 };
   Machine sm;
};

TEST_F( EgressMask, FollowsAVtepFromTheFirstAddToTheLastRemoval ) {
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );  // the first VTEP of both units
   expectCalls( onUnit( 0, exemptionsInstalled + ruleInstalled( 3, "10.0.0.2", "0002", "{5}" ) ) +
                onUnit( 1, exemptionsInstalled + ruleInstalled( 3, "10.0.0.2", "0002", "{6}" ) ) );

   leaf.segmentIs( "Port-Channel2", { "10.0.0.3" } );  // a second one
   expectCalls( onUnit( 0, ruleInstalled( 4, "10.0.0.3", "0003", "{5}" ) ) +
                onUnit( 1, ruleInstalled( 4, "10.0.0.3", "0003", "{6}" ) ) );

   leaf.vtepIs( "10.0.0.2", 0x70009 );  // a new VP index
   expectCalls( onUnit( 0, released( 3 ) + ruleInstalled( 5, "10.0.0.2", "0009", "{5}" ) ) +
                onUnit( 1, released( 3 ) + ruleInstalled( 5, "10.0.0.2", "0009", "{6}" ) ) );

   leaf.segmentIs( "Port-Channel3", { "10.0.0.2" } );  // a segment interface joins
   expectCalls( onUnit( 0, reinstalled( 5, "{5,7}" ) ) );

   leaf.segmentDel( "Port-Channel3" );  // and leaves
   expectCalls( onUnit( 0, reinstalled( 5, "{5}" ) ) );

   // A VTEP goes: its last interface leaves the mask before the entry is released.
   leaf.evpnStatus->segmentStatus( intf( "Port-Channel2" ) )->remoteTepDel( ip( "10.0.0.3" ) );
   expectCalls( onUnit( 0, reinstalled( 4, "{}" ) ) + onUnit( 1, reinstalled( 4, "{}" ) ) +
                onUnit( 0, released( 4 ) ) + onUnit( 1, released( 4 ) ) );

   leaf.segmentDel( "Port-Channel2" );  // the last VTEP of both units goes
   expectCalls( onUnit( 0, reinstalled( 5, "{}" ) ) + onUnit( 1, reinstalled( 5, "{}" ) ) +
                onUnit( 0, released( 5 ) + released( 1 ) + released( 2 ) ) +
                onUnit( 1, released( 5 ) + released( 1 ) + released( 2 ) ) );
   EXPECT_FALSE( sm->tepIpToEntryHas( 0 ) );
   EXPECT_FALSE( sm->tepIpToEntryHas( 1 ) );
}

TEST_F( EgressMask, AWithdrawnVirtualPortReleasesWithoutTouchingTheMask ) {
   leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
   leaf.forget();
   leaf.vtepDel( "10.0.0.2" );
   expectCalls( onUnit( 0, released( 3 ) + released( 1 ) + released( 2 ) ) +
                onUnit( 1, released( 3 ) + released( 1 ) + released( 2 ) ) );
}

TEST_F( EgressMask, AnAddTracesItsSteps ) {
   leaf.segmentIs( "Port-Channel3", { "10.0.0.2" } );
   std::string const mask =
      "  0x00000000 0x00000000 0x00000000 0x00000000 0x00000000 0x00000000 "
      "0x00000000 0x00000000 0x00000080";
   EXPECT_EQ( leaf.tracesOf( "5 ifpTcamEntries, unit: 0" ),
              ( Lines{
                 "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1",
                 "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1",
              } ) );
   EXPECT_EQ( leaf.tracesOf( "4 ifpTcamEntries" ),
              ( Lines{
                 "4 ifpTcamEntries allocated IFP entry ID 3",
                 "4 ifpTcamEntries working with IFP entry ID 3",
                 "4 ifpTcamEntries allocated IFP entry ID 3",
                 "4 ifpTcamEntries working with IFP entry ID 3",
              } ) );
   EXPECT_EQ( leaf.tracesOf( "3 ifpTcamEntries, unit: 0" ),
              ( Lines{ "3 ifpTcamEntries, unit: 0, ubmp:" + mask } ) );
}

TEST_F( EgressMask, ARemovalTracesTheEntryThatHasGoneAsZero ) {
   leaf.segmentIs( "Port-Channel3", { "10.0.0.2" } );
   leaf.forget();
   leaf.vtepDel( "10.0.0.2" );
   EXPECT_EQ( ( Lines{ leaf.traces.begin() + 2, leaf.traces.begin() + 7 } ),
              ( Lines{
                 "5 deleteTcamEntries, unit: 0, tepIp: 10.0.0.2",
                 "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0",
                 "5 ifpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0",
                 "4 ifpTcamEntries freed IFP entry ID 3",
                 "4 ifpTcamEntries working with IFP entry ID 0",
              } ) );
}

TEST_F( EgressMask, AVtepWithoutSharedPortsOnAUnitHasAnInstalledEntryWithAnEmptyMask ) {
   leaf.segmentIs( "Port-Channel3", { "10.0.0.2" } );
   EXPECT_EQ( leaf.tracesOf( "3 ifpTcamEntries no" ),
              ( Lines{ "3 ifpTcamEntries no ports to be masked on unit: 1" } ) );
   EXPECT_EQ( mask( 1 ), "{}" );
   EXPECT_TRUE( sm->tepIpToEntry( 1U )->esPbmpHas( ip( "10.0.0.2" ) ) );
   EXPECT_EQ( leaf.callLines().back(), "unit 1 entry 3: installEntry( group 157 ) = 0" );
}

// --- Updates

class EgressMaskUpdate : public EgressMask {
 protected:
   EgressMaskUpdate() {
      leaf.segmentIs( "Port-Channel2", { "10.0.0.2" } );
      leaf.forget();
   }
   static VornalPortList portsOf( std::vector< U16 > const & logicalPorts ) {
      VornalPortList list;
      for ( U16 const logicalPort : logicalPorts ) {
         list.portIs( LocalBiasSwitch::port( 0, logicalPort ) );
      }
      return list;
   }
};

TEST_F( EgressMaskUpdate, WithoutPortsBeforeAndAfterOnlyTraces ) {
   sm->updateTcamEntries( 0, ip( "10.0.0.2" ), intf( "Ethernet9" ), true );
   EXPECT_EQ( leaf.traces,
              ( Lines{
                 "5 updateTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1, intfId: Ethernet9",
                 "5 getPortListsOnUpdate, unit: 0, tepIp: 10.0.0.2, intfId: Ethernet9",
                 "7 getPortListsOnUpdate, no update needed",
                 "7 updateTcamEntries, no update needed",
              } ) );
   EXPECT_TRUE( leaf.calls.empty() );
}

TEST_F( EgressMaskUpdate, ClearsTheOldPortsBeforeItSetsTheNew ) {
   EXPECT_TRUE( sm->updateIfpTcamEntries( 0, ip( "10.0.0.2" ), portsOf( { 5 } ),
                                          portsOf( { 8, 9 } ), true ) );
   EXPECT_EQ( leaf.traces,
              ( Lines{
                 "5 updateIfpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 1",
                 "7 updateIfpTcamEntries, removing old lport 5 from egress mask bmp",
                 "7 updateIfpTcamEntries, adding lport 8 to egress mask bmp",
                 "7 updateIfpTcamEntries, adding lport 9 to egress mask bmp",
                 "3 updateIfpTcamEntries, reinstalled entryId: 3 with new bmp:  0x00000000 "
                 "0x00000000 0x00000000 0x00000000 0x00000000 0x00000000 0x00000000 0x00000000 "
                 "0x00000300",
              } ) );
   expectCalls( onUnit( 0, reinstalled( 3, "{8-9}" ) ) );
}

TEST_F( EgressMaskUpdate, ClearsBothOldAndNewPortsOnARemove ) {
   sm->updateIfpTcamEntries( 0, ip( "10.0.0.2" ), {}, portsOf( { 8, 9 } ), true );
   leaf.forget();
   sm->updateIfpTcamEntries( 0, ip( "10.0.0.2" ), portsOf( { 5 } ), portsOf( { 8 } ), false );
   EXPECT_EQ( leaf.tracesOf( "7 " ),
              ( Lines{
                 "7 updateIfpTcamEntries, removing old lport 5 from egress mask bmp",
                 "7 updateIfpTcamEntries, removing lport 8 from egress mask bmp",
              } ) );
   EXPECT_EQ( leaf.traces.front(), "5 updateIfpTcamEntries, unit: 0, tepIp: 10.0.0.2, add 0" );
   expectCalls( onUnit( 0, reinstalled( 3, "{9}" ) ) );
}

TEST_F( EgressMaskUpdate, APortInBothListsEndsSetAfterAnAdd ) {
   sm->updateIfpTcamEntries( 0, ip( "10.0.0.2" ), portsOf( { 5 } ), portsOf( { 5 } ), true );
   expectCalls( onUnit( 0, reinstalled( 3, "{5}" ) ) );
}

TEST_F( EgressMaskUpdate, APortInBothListsEndsClearAfterARemove ) {
   sm->updateIfpTcamEntries( 0, ip( "10.0.0.2" ), portsOf( { 5 } ), portsOf( { 5 } ), false );
   expectCalls( onUnit( 0, reinstalled( 3, "{}" ) ) );
}

TEST_F( EgressMaskUpdate, ALagMemberThatJoinsOrLeavesUpdatesTheUnitsOfThePortChannel ) {
   leaf.memberDel( "Ethernet5" );
   expectCalls( onUnit( 0, reinstalled( 3, "{}" ) ) + onUnit( 1, reinstalled( 3, "{6}" ) ) );
   leaf.memberIs( "Port-Channel2", "Ethernet5" );
   EXPECT_EQ( mask( 0 ), "{5}" );
}

TEST_F( EgressMaskUpdate, APortThatChangesMovesItsBit ) {
   leaf.interfaceIs( "Ethernet5", 0, 11 );
   expectCalls( onUnit( 0, reinstalled( 3, "{11}" ) ) );
   leaf.interfaceDel( "Ethernet5" );
   expectCalls( onUnit( 0, reinstalled( 3, "{}" ) ) );
}

TEST_F( EgressMaskUpdate, EachVtepsMaskHoldsWhatIsSharedWithIt ) {
   leaf.segmentIs( "Port-Channel3", { "10.0.0.3" } );
   EXPECT_EQ( mask( 0, "10.0.0.2" ), "{5}" );
   EXPECT_EQ( mask( 0, "10.0.0.3" ), "{7}" );
   leaf.segmentIs( "Port-Channel3", { "10.0.0.2" } );
   EXPECT_EQ( mask( 0, "10.0.0.2" ), "{5,7}" );
   EXPECT_EQ( mask( 0, "10.0.0.3" ), "{7}" );
}

}  // namespace EgressMaskTest
