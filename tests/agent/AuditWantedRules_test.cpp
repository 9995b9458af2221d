// Which rules a published state calls for, on states made up by hand.
#include <Audit/SharedSegments.h>
#include <Audit/WantedRules.h>

#include <gtest/gtest.h>

#include <Snapshot/RuleText.h>
#include <Story/Difference.h>

namespace {

using Audit::Purpose;
using Audit::RuleFor;
using Audit::State;
using Pelk::IntfId;
using Pelk::IpGenAddr;
using VornalTypes::VornalPort;

IntfId intf( char const * name ) {
   return IntfId::fromString( name );
}

IpGenAddr const kVtep = IpGenAddr::fromString( "10.0.0.2" );

// Two units; a port channel with a member on each, and one without a port; a VTEP on it.
State twoUnits() {
   State state;
   state.isPluginReady = true;
   state.modules = { { 0, 1 }, { 1, 5 } };
   state.ports = { { intf( "Ethernet1" ), VornalPort( 0, 7, 1 ) },
                   { intf( "Ethernet2" ), VornalPort( 1, 7, 5 ) } };
   state.lags[ intf( "Port-Channel1" ) ] = { intf( "Ethernet1" ), intf( "Ethernet2" ),
                                             intf( "Ethernet3" ) };
   state.segments[ intf( "Port-Channel1" ) ] = { kVtep };
   state.virtualPorts[ kVtep ] = 0x30004;
   return state;
}

std::string contentOf( State const & state, RuleFor const & what ) {
   auto const rules = wantedRules( state );
   auto const found = rules.find( what );
   return found == rules.end() ? "none" : Chip::contentText( found->second.content );
}

TEST( AuditWantedRules, AreNoneBeforeThePlugInIsReady ) {
   State state = twoUnits();
   state.isPluginReady = false;
   EXPECT_TRUE( wantedRules( state ).empty() );
}

TEST( AuditWantedRules, ExemptUnicastAndMaskEachUnitsOwnPorts ) {
   State const state = twoUnits();

   EXPECT_EQ( wantedRules( state ).size(), 6U );
   EXPECT_EQ( contentOf( state, { 0, Purpose::l2Unicast } ),
              "matches PacketRes 4 mask 0xff (known unicast) and TunnelTerminated 1 mask 0x1; does "
              "nothing; the "
              "group's default priority" );
   EXPECT_EQ( contentOf( state, { 1, Purpose::l3Unicast } ),
              "matches PacketRes 10 mask 0xff (routed unicast) and TunnelTerminated 1 mask 0x1; "
              "does nothing; the "
              "group's default priority" );
   EXPECT_EQ( contentOf( state, { 1, Purpose::vtep, kVtep } ),
              "matches SrcVxlanGport 0x56000004; does EgressMask ports 7; priority 1" );
   EXPECT_EQ( wantedRules( state ).at( { 1, Purpose::vtep, kVtep } ).because,
              "VTEP 10.0.0.2 shares segment Port-Channel1 through Ethernet2; virtual port 196612" );
}

TEST( AuditWantedRules, MaskNoPortWhereNoneIsShared ) {
   State state = twoUnits();
   state.ports[ intf( "Ethernet2" ) ] = VornalPort( 1, VornalPort::kInvalidLogicalPort, 5 );

   EXPECT_EQ( contentOf( state, { 1, Purpose::vtep, kVtep } ),
              "matches SrcVxlanGport 0x56000004; does EgressMask no port; priority 1" );
   EXPECT_EQ( wantedRules( state ).at( { 1, Purpose::vtep, kVtep } ).because,
              "VTEP 10.0.0.2 shares segment Port-Channel1, which has no port on unit 1; virtual "
              "port 196612" );
}

TEST( AuditWantedRules, MaskNoPortBeyondTheEndOfMasks ) {
   State state = twoUnits();
   state.ports[ intf( "Ethernet3" ) ] = VornalPort( 1, 352, 5 );

   EXPECT_EQ( contentOf( state, { 1, Purpose::vtep, kVtep } ),
              "matches SrcVxlanGport 0x56000004; does EgressMask ports 7; priority 1" );
}

TEST( AuditWantedRules, MarkAndDropWithTheClassIdThatIsGranted ) {
   State state = twoUnits();
   state.variant = Audit::Variant::classId;
   state.classIds[ kVtep ] = VornalCommon::ClassId( 9 );

   EXPECT_EQ( wantedRules( state ).size(), 8U );
   EXPECT_EQ( contentOf( state, { 0, Purpose::vtep, kVtep } ),
              "matches SrcVxlanGport 0x56000004; does EgressClassSelect 1 and NewClassId 9; "
              "priority 1" );
   RuleFor const drop{ 1, Purpose::egressDrop, kVtep, VornalPort( 1, 7, 5 ) };
   EXPECT_EQ( contentOf( state, drop ),
              "matches DstPort module 5 port 7 and IpType 0 mask 0x0 and IngressClassField 9; does "
              "Drop; the group's default priority" );
   EXPECT_EQ( wantedRules( state ).at( drop ).name,
              "Drop packets at EFP from vtep IP 10.0.0.2 on Ethernet2" );
   EXPECT_EQ( drop.group(), 45 );
}

TEST( AuditWantedRules, LeaveTheClassIdOpenUntilItIsGranted ) {
   State state = twoUnits();
   state.variant = Audit::Variant::classId;

   auto const rule = wantedRules( state ).at( { 0, Purpose::vtep, kVtep } );
   EXPECT_TRUE( rule.isWithoutClassId );
   EXPECT_FALSE( rule.content[ Chip::Action::NewClassId ] );
}

TEST( AuditWantedRules, ExemptTheVnisOfEveryTunnelInterfaceWhileThereAreSegments ) {
   State state = twoUnits();
   state.modules = { { 0, 1 } };
   state.vnis = { { intf( "Vxlan1" ), { { L3::VrfName( "red" ), 10 } } },
                  { intf( "Vxlan2" ), { { L3::VrfName( "blue" ), 20 } } } };

   EXPECT_EQ( wantedRules( state ).size(), 5U );
   EXPECT_EQ(
      contentOf( state, { 0, Purpose::vni, {}, {}, 20 } ),
      "matches PacketRes 12 (routed multicast) and VxlanNetworkId 20; does nothing; priority 2" );

   state.virtualPorts.clear();
   EXPECT_EQ( wantedRules( state ).size(), 2U );
   state.isL3MulticastExempt = true;
   EXPECT_EQ( wantedRules( state ).size(), 0U );
   state.isL3MulticastExempt = false;
   state.segments.clear();
   EXPECT_EQ( wantedRules( state ).size(), 0U );
}

TEST( AuditWantedRules, HaveNoPrioritiesAndNoVnisWithoutTheOverrideRule ) {
   State state = twoUnits();
   state.isOverrideRuleOn = false;
   state.vnis[ intf( "Vxlan1" ) ][ L3::VrfName( "red" ) ] = 10;

   EXPECT_EQ( wantedRules( state ).size(), 6U );
   EXPECT_EQ( contentOf( state, { 0, Purpose::vtep, kVtep } ),
              "matches SrcVxlanGport 0x56000004; does EgressMask ports 7; the group's default "
              "priority" );
}

TEST( AuditWantedRules, CountAPortOnceThatIsSharedTwice ) {
   State state = twoUnits();
   state.segments[ intf( "Ethernet1" ) ] = { kVtep };

   EXPECT_EQ( sharedPorts( state, 0, kVtep ).size(), 1U );
   EXPECT_EQ( activeVteps( state ).size(), 1U );
   EXPECT_EQ( vpIndexOf( state, kVtep ), 4U );
   EXPECT_EQ( vpIndexOf( state, IpGenAddr::fromString( "10.0.0.3" ) ), 0U );
}

TEST( AuditKinds, HaveNamesThatLeadBack ) {
   for ( Story::DifferenceRow const & row : Story::differenceRows() ) {
      EXPECT_EQ( Story::differenceKindNamed( row.name ), row.kind );
      EXPECT_EQ( nameOf( row.kind ), row.name );
   }
   EXPECT_THROW( Story::differenceKindNamed( "missing" ), std::out_of_range );
   EXPECT_TRUE( isKnown( Story::DifferenceKind::noRoom ) );
   EXPECT_FALSE( isKnown( Story::DifferenceKind::recordDiffers ) );
}

}  // namespace
