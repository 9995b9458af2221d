// Frames probe a switch behind each call of the chip, and tell what goes wrong between two calls.
//
//    unit 0   Ethernet1: port 1, shared with 10.0.0.2     Ethernet2: port 2
//    unit 1   Ethernet3: port 3
//    VRF red has VNI 50001
#include <Probing/Probes.h>

#include <gtest/gtest.h>

#include <Board/Board.h>
#include <FieldProcessor/Gport.h>
#include <Story/Event.h>

namespace ProbesTest {

namespace {

using Chip::Action;
using Chip::FrameKind;
using Chip::Qualifier;
using Pelk::IntfId;
using Pelk::IpGenAddr;
using Probing::Lasting;
using Probing::Seen;
using Transients = std::map< std::string, U32 >;

constexpr auto kGroup = Vornal::kIfpLocalBiasGroup;
constexpr U32 kExact = 0xffffffff;

IntfId intf( std::string_view name ) {
   return IntfId::fromString( name );
}

class Probes : public testing::Test {
 protected:
   Probes() {
      state.modules = { { 0, 0 }, { 1, 4 } };
      state.ports = { { intf( "Ethernet1" ), { 0, 1, 0 } },
                      { intf( "Ethernet2" ), { 0, 2, 0 } },
                      { intf( "Ethernet3" ), { 1, 3, 4 } } };
      state.segments = { { intf( "Ethernet1" ), { vtep } } };
      state.virtualPorts = { { vtep, 2 } };
      state.vnis = { { intf( "Vxlan1" ), { { L3::VrfName( "red" ), 50001 } } } };
      probes.watch( board.units(), [ this ] { return state; } );
   }

   // --- Calls
   void call() { probes.onEvent( Story::CallMade{} ); }
   U32 write( U16 unit, auto const & fill ) {
      Chip::Group & group = *board.units().group( unit, kGroup );
      U32 const id = group.entryNew( "rule" );
      fill( *group.entry( id ) );
      group.install( id );
      call();
      return id;
   }
   U32 exempt( U16 unit, FrameKind kind ) {
      return write( unit, [ & ]( Chip::Entry & entry ) {
         entry.qualify( Qualifier::PacketRes, { packetResolutionOf( kind ), kExact } );
         entry.qualify( Qualifier::TunnelTerminated, { 1, 1 } );
      } );
   }
   void exemptVni( U16 unit ) {
      write( unit, []( Chip::Entry & entry ) {
         entry.qualify( Qualifier::PacketRes,
                        { packetResolutionOf( FrameKind::RoutedMulticast ), kExact } );
         entry.qualify( Qualifier::VxlanNetworkId, { 50001, kExact } );
      } );
   }
   U32 mask( U16 unit, std::vector< U32 > const & ports ) {
      return write( unit, [ & ]( Chip::Entry & entry ) {
         entry.qualify( Qualifier::SrcVxlanGport, { Chip::vxlanGportOf( 2 ), kExact } );
         entry.actionAdd( Action::EgressMask, { .ports = bitmapOf( ports ) } );
         entry.priorityIs( 1 );
      } );
   }
   void maskIs( U16 unit, U32 id, std::vector< U32 > const & ports ) {
      Chip::Group & group = *board.units().group( unit, kGroup );
      group.entry( id )->actionUpdate( Action::EgressMask, { .ports = bitmapOf( ports ) } );
      group.install( id );
      call();
   }
   void release( U16 unit, U32 id ) {
      board.units().group( unit, kGroup )->release( id );
      call();
   }
   static Brum::PerUnitBitmap bitmapOf( std::vector< U32 > const & ports ) {
      Brum::PerUnitBitmap bitmap;
      for ( U32 const port : ports ) {
         bitmap.bitSet( port );
      }
      return bitmap;
   }
   void exemptAll() {
      for ( U16 const unit : { U16{ 0 }, U16{ 1 } } ) {
         exempt( unit, FrameKind::KnownUnicast );
         exempt( unit, FrameKind::RoutedUnicast );
         exemptVni( unit );
      }
   }
   // All rules, in an order in which nothing goes wrong but for want of the last one. The result is
   // the VTEP's rule on unit 0.
   U32 writeAll() {
      exemptAll();
      U32 const id = mask( 0, { 1 } );
      mask( 1, {} );
      probes.seenAtRest();
      return id;
   }
   void stateIsOther() { probes.onEvent( Story::PublishedChange{} ); }

   IpGenAddr const vtep = IpGenAddr::fromString( "10.0.0.2" );
   Audit::State state;
   Chip::Board board{ Chip::BoardConfig{ { { 0, 0 }, { 1, 4 } } } };
   Probing::Probes probes;
};

TEST_F( Probes, CountTheCallsUntilTheRuleOfAVtepIsWritten ) {
   exemptAll();
   mask( 0, { 1 } );
   Seen const seen = probes.seenAtRest();
   EXPECT_EQ( seen.transients,
              ( Transients{ { "flooded frames still leave by a shared port", 6 },
                            { "known L3 multicast frames still leave by a shared port", 6 } } ) );
   EXPECT_TRUE( seen.lasting.empty() );
   // In two VNIs: one of each of three hosts, four kinds for several, and two to each host. Behind
   // seven calls, and at rest.
   EXPECT_EQ( seen.frames, 2U * ( 3U + 4U + 2U * 3U ) * 8U );
}

TEST_F( Probes, SeeUnicastThatARuleTakesBeforeItsExemptionStands ) {
   mask( 0, { 1 } );
   exempt( 0, FrameKind::KnownUnicast );
   exempt( 0, FrameKind::RoutedUnicast );
   exemptVni( 0 );
   Seen const seen = probes.seenAtRest();
   EXPECT_EQ( seen.transients.at( "known unicast frames reach a port no more" ), 1U );
   EXPECT_EQ( seen.transients.at( "routed unicast frames reach a port no more" ), 2U );
   EXPECT_TRUE( seen.lasting.empty() );
}

TEST_F( Probes, SeeKnownL3MulticastOfAVniWithoutItsExemption ) {
   exempt( 0, FrameKind::KnownUnicast );
   exempt( 0, FrameKind::RoutedUnicast );
   mask( 0, { 1 } );
   exemptVni( 0 );
   EXPECT_EQ( probes.seenAtRest().transients.at( "known L3 multicast frames reach a port no more" ),
              1U );
}

TEST_F( Probes, KeepNoKnownL3MulticastExemptWithoutTheOverride ) {
   state.isOverrideRuleOn = false;
   stateIsOther();
   exempt( 0, FrameKind::KnownUnicast );
   exempt( 0, FrameKind::RoutedUnicast );
   mask( 0, { 1 } );
   Seen const seen = probes.seenAtRest();
   EXPECT_EQ( seen.transients.size(), 2U );
   EXPECT_TRUE( seen.lasting.empty() );
}

TEST_F( Probes, SeeARuleThatGoesAndReturns ) {
   U32 const id = writeAll();
   release( 0, id );
   call();
   mask( 0, { 1 } );
   EXPECT_EQ( probes.seenAtRest().transients,
              ( Transients{ { "flooded frames leave by a shared port again", 2 },
                            { "known L3 multicast frames leave by a shared port again", 2 } } ) );
}

TEST_F( Probes, SeeAnotherPortHarmed ) {
   U32 const id = writeAll();
   maskIs( 0, id, { 1, 2 } );
   maskIs( 0, id, { 1 } );
   EXPECT_EQ( probes.seenAtRest().transients,
              ( Transients{ { "flooded frames reach a port no more", 1 },
                            { "known L3 multicast frames reach a port no more", 1 } } ) );
}

TEST_F( Probes, CountFromTheChangeOfTheStateOn ) {
   U32 const id = writeAll();
   call();
   state.segments = { { intf( "Ethernet2" ), { vtep } } };
   stateIsOther();
   call();
   maskIs( 0, id, { 1, 2 } );
   maskIs( 0, id, { 2 } );
   EXPECT_EQ( probes.seenAtRest().transients,
              ( Transients{ { "flooded frames still leave by a shared port", 1 },
                            { "known L3 multicast frames still leave by a shared port", 1 },
                            { "flooded frames do not reach a port yet", 2 },
                            { "known L3 multicast frames do not reach a port yet", 2 } } ) );
}

TEST_F( Probes, EndATransientWhenTheStateWantsItOtherwise ) {
   writeAll();
   state.segments = { { intf( "Ethernet1" ), { vtep } }, { intf( "Ethernet2" ), { vtep } } };
   stateIsOther();
   call();
   state.segments = { { intf( "Ethernet1" ), { vtep } } };
   stateIsOther();
   Seen const seen = probes.seenAtRest();
   EXPECT_EQ( seen.transients.at( "flooded frames still leave by a shared port" ), 1U );
   EXPECT_TRUE( seen.lasting.empty() );
}

TEST_F( Probes, EndATransientWithTheVtep ) {
   exemptAll();
   state.virtualPorts.clear();
   stateIsOther();
   Seen const seen = probes.seenAtRest();
   EXPECT_EQ( seen.transients.at( "flooded frames still leave by a shared port" ), 6U );
   EXPECT_TRUE( seen.lasting.empty() );
}

TEST_F( Probes, TakeWhatIsWrongAtRestForNoTransient ) {
   exemptAll();
   std::string const text = "flooded frames still leave by a shared port";
   Seen const seen = probes.seenAtRest();
   EXPECT_FALSE( seen.transients.contains( text ) );
   EXPECT_TRUE( seen.lasting.contains( { text, 0, vtep, "" } ) );
   EXPECT_TRUE( probes.seenAtRest().lasting.contains( { text, 0, vtep, "" } ) );
   call();
   U32 const id = mask( 0, { 1 } );
   Seen const mended = probes.seenAtRest();
   EXPECT_TRUE( mended.transients.empty() );
   EXPECT_TRUE( mended.lasting.empty() );
   release( 0, id );
   mask( 0, { 1 } );
   EXPECT_EQ( probes.seenAtRest().transients.at( "flooded frames leave by a shared port again" ),
              1U );
}

TEST_F( Probes, TellTheLongestOfTransients ) {
   U32 const first = writeAll();
   release( 0, first );
   call();
   U32 const second = mask( 0, { 1 } );
   release( 0, second );
   mask( 0, { 1 } );
   EXPECT_EQ( probes.seenAtRest().transients.at( "flooded frames leave by a shared port again" ),
              2U );
}

TEST_F( Probes, FindAPortThatComesUnderAnOldMask ) {
   U32 const id = writeAll();
   maskIs( 0, id, { 1, 4 } );
   state.ports[ intf( "Ethernet4" ) ] = { 0, 4, 0 };
   stateIsOther();
   call();
   maskIs( 0, id, { 1 } );
   EXPECT_EQ( probes.seenAtRest().transients.at( "flooded frames do not reach a port yet" ), 1U );
}

TEST_F( Probes, SeeWhatRulesOfClassIdsKeepBack ) {
   exemptAll();
   write( 0, []( Chip::Entry & entry ) {
      entry.qualify( Qualifier::SrcVxlanGport, { Chip::vxlanGportOf( 2 ), kExact } );
      entry.actionAdd( Action::EgressClassSelect, { .param0 = 1 } );
      entry.actionAdd( Action::NewClassId, { .param0 = 9 } );
      entry.priorityIs( 1 );
   } );
   EXPECT_FALSE( probes.seenAtRest().lasting.empty() );
   Chip::Group & egress = *board.units().group( 0, Vornal::kEfpLocalBiasGroup );
   U32 const id = egress.entryNew( "drop" );
   egress.entry( id )->qualify( Qualifier::DstPort, { 1, kExact, 0, kExact } );
   egress.entry( id )->qualify( Qualifier::IngressClassField, { 9, kExact } );
   egress.entry( id )->actionAdd( Action::Drop, {} );
   egress.install( id );
   call();
   EXPECT_TRUE( probes.seenAtRest().lasting.empty() );
}

TEST_F( Probes, NameTheRuleThatKeepsBackWhatItShouldNot ) {
   exemptAll();
   mask( 0, { 1, 2 } );
   Seen const seen = probes.seenAtRest();
   ASSERT_EQ( seen.lasting.size(), 2U ) << "flooded frames, and known L3 multicast";
   for ( Lasting const & one : seen.lasting ) {
      EXPECT_EQ( one.vtep, vtep );
      EXPECT_EQ( one.rule, "rule" );
   }
}

TEST_F( Probes, SendNothingBeforeTheFirstCall ) {
   stateIsOther();
   EXPECT_EQ( probes.seenAtRest().frames, 0U );
}

TEST_F( Probes, WantEveryFrameOfAVtepThatSharesNothing ) {
   state.virtualPorts[ IpGenAddr::fromString( "10.0.0.3" ) ] = 3;
   stateIsOther();
   writeAll();
   EXPECT_TRUE( probes.seenAtRest().lasting.empty() );
}

TEST_F( Probes, LeaveOutKnownL3MulticastThatThePlatformExempts ) {
   state.isL3MulticastExempt = true;
   stateIsOther();
   exempt( 0, FrameKind::KnownUnicast );
   exempt( 0, FrameKind::RoutedUnicast );
   mask( 0, { 1 } );
   EXPECT_TRUE( probes.seenAtRest().lasting.empty() );
}

TEST_F( Probes, LookAtEachMemberOfAPortChannelOnEachUnit ) {
   state.lags = { { intf( "Port-Channel1" ), { intf( "Ethernet2" ), intf( "Ethernet3" ) } } };
   state.segments = { { intf( "Port-Channel1" ), { vtep } } };
   stateIsOther();
   exemptAll();
   mask( 0, { 2 } );
   EXPECT_FALSE( probes.seenAtRest().lasting.empty() );
   mask( 1, { 3 } );
   EXPECT_TRUE( probes.seenAtRest().lasting.empty() );
}

TEST_F( Probes, TakeAPortOfTwoInterfacesForSharedWhenOneOfThemIs ) {
   state.ports[ intf( "Ethernet0" ) ] = { 0, 1, 0 };
   stateIsOther();
   exemptAll();
   EXPECT_FALSE( probes.seenAtRest().lasting.empty() );
   mask( 0, { 1 } );
   EXPECT_TRUE( probes.seenAtRest().lasting.empty() );
}

TEST_F( Probes, JudgeNoVirtualPortOfTwoVteps ) {
   state.virtualPorts[ IpGenAddr::fromString( "10.0.0.3" ) ] = 2;
   stateIsOther();
   call();
   EXPECT_TRUE( probes.seenAtRest().lasting.empty() );
}

TEST_F( Probes, SeeFramesOfAVtepThatLeaveAgainWhenItsVirtualPortChanges ) {
   U32 const old = writeAll();
   state.virtualPorts[ vtep ] = 3;
   stateIsOther();
   release( 0, old );
   Seen const seen = probes.seenAtRest();
   EXPECT_TRUE( seen.transients.empty() );
   EXPECT_TRUE(
      seen.lasting.contains( { "flooded frames leave by a shared port again", 0, vtep } ) );
}

TEST_F( Probes, LookAfterAVniThatItsVrfHasLost ) {
   writeAll();
   state.vnis.clear();
   stateIsOther();
   call();
   EXPECT_TRUE( probes.seenAtRest().lasting.contains(
      { "known L3 multicast frames still leave by a shared port", 0, vtep } ) );
}

TEST_F( Probes, WantEveryFrameOfAHostOfThisSwitch ) {
   writeAll();
   U32 const id = write( 0, []( Chip::Entry & entry ) {
      entry.actionAdd( Action::EgressMask, { .ports = bitmapOf( { 2 } ) } );
   } );
   std::string const text = "flooded frames reach a port no more";
   EXPECT_TRUE( probes.seenAtRest().lasting.contains( { text, 0, std::nullopt, "rule" } ) );
   release( 0, id );
   EXPECT_TRUE( probes.seenAtRest().lasting.empty() );
}

TEST_F( Probes, LookAtRestAtWhatNoCallHasChanged ) {
   U32 const id = writeAll();
   board.units().group( 0, kGroup )->release( id );
   EXPECT_FALSE( probes.seenAtRest().lasting.empty() );
}

// Three more interfaces, of which two have no port that a frame can leave by. The VRF had VNI
// 50001.
TEST_F( Probes, FindARoomOfTheirOwnOnAnySwitch ) {
   state.vnis = { { intf( "Vxlan1" ), { { L3::VrfName( "red" ), 1 } } } };
   state.ports[ intf( "Ethernet65534" ) ] = { 0, 351, 0 };
   state.ports[ intf( "Ethernet5" ) ] = { 0, 400, 0 };
   state.ports[ intf( "Ethernet6" ) ] = { 7, 1, 0 };
   stateIsOther();
   call();
   EXPECT_EQ( probes.seenAtRest().frames, 3U * ( 4U + 4U + 2U * 4U ) * 2U );
}

TEST_F( Probes, AskTheAuditForTheReasonOfWhatLasts ) {
   Seen const seen{ .lasting = { { "text", 1, vtep } } };
   auto const isUnexplained = [ & ]( Story::Difference const & difference ) {
      Audit::Report report;
      report.differences = { difference };
      return !unexplained( seen, report, true ).empty();
   };
   EXPECT_EQ( unexplained( seen, {}, true ), seen.lasting );
   EXPECT_TRUE( unexplained( seen, {}, false ).empty() );
   Story::Difference difference;
   EXPECT_TRUE( isUnexplained( difference ) );
   difference.rule = "Mark or drop packets at IFP from vtep IP 10.0.0.2 on shared segments";
   EXPECT_FALSE( isUnexplained( difference ) );
   difference.unit = 1;
   EXPECT_FALSE( isUnexplained( difference ) );
   difference.unit = 0;
   EXPECT_TRUE( isUnexplained( difference ) );
   difference.unit = 1;
   difference.rule = "Mark or drop packets at IFP from vtep IP 10.0.0.21 on shared segments";
   EXPECT_TRUE( isUnexplained( difference ) );
   difference.rule = "Skip shared ES pruning for packets with vni 50001 - No-op";
   EXPECT_FALSE( isUnexplained( difference ) );
}

TEST_F( Probes, SendOverIpv6Too ) {
   IpGenAddr const other = IpGenAddr::fromString( "2001:db8::3" );
   state.segments[ intf( "Ethernet2" ) ].insert( other );
   state.virtualPorts[ other ] = 3;
   stateIsOther();
   call();
   EXPECT_TRUE( probes.seenAtRest().lasting.contains(
      { "flooded frames still leave by a shared port", 0, other } ) );
}

}  // namespace

}  // namespace ProbesTest
