// Two maps lead from an interface to its port: the live one, and the one that keeps the last port.
// The order of their announcements lets a subscriber of the live map find the port that an
// interface has lost.
#include <gtest/gtest.h>

#include <string>

#include <Vornal/VornalCommonSmData.h>

#include "support/Journal.h"

namespace VornalCommonSmDataTest {

using Pelk::IntfId;
using Quelm::Ptr;
using Support::Journal;
using Vornal::VornalCommonSmData;
using VornalTypes::VornalPort;

IntfId const et1 = IntfId::fromString( "Ethernet1" );
IntfId const et2 = IntfId::fromString( "Ethernet2" );
VornalPort const port5( 0, 5 );
VornalPort const port6( 0, 6 );

class InterfacePorts : public testing::Test {
 protected:
   Journal news() { return std::exchange( seen, {} ); }

   Ptr< VornalCommonSmData > data = Quelm::make< VornalCommonSmData >( "vornalCommon" );
   Journal seen;
   Support::Scribe< VornalCommonSmData > scribe{ data, seen };
};

TEST_F( InterfacePorts, FirstSeenInterfaceEntersTheCacheBeforeTheLiveMapAnnouncesIt ) {
   data->intfPortIs( et1, port5 );
   EXPECT_EQ( news(),
              ( Journal{
                 "vornalCommon vornalIntfToPortCache[Ethernet1]: absent -> unit0/port5/mod0",
                 "vornalCommon vornalIntfToPort[Ethernet1]: absent -> unit0/port5/mod0",
              } ) );
}

TEST_F( InterfacePorts, WhenAKnownInterfaceChangesItsPortTheLiveMapAnnouncesFirst ) {
   data->intfPortIs( et1, port5 );
   news();
   data->intfPortIs( et1, port6 );
   EXPECT_EQ( news(), ( Journal{
                         "vornalCommon vornalIntfToPort[Ethernet1]: unit0/port5/mod0 -> "
                         "unit0/port6/mod0",
                         "vornalCommon vornalIntfToPortCache[Ethernet1]: unit0/port5/mod0 -> "
                         "unit0/port6/mod0",
                      } ) );
}

TEST_F( InterfacePorts, LostPortStaysInTheCache ) {
   data->intfPortIs( et1, port5 );
   news();
   data->intfPortDel( et1 );
   EXPECT_EQ( news(),
              Journal{ "vornalCommon vornalIntfToPort[Ethernet1]: unit0/port5/mod0 -> absent" } );
   EXPECT_FALSE( data->vornalIntfToPortHas( et1 ) );
   EXPECT_EQ( data->vornalIntfToPortCache( et1 ), port5 );
}

TEST_F( InterfacePorts, KnownInterfaceThatGetsAnotherPortAfterALossIsAnnouncedLiveFirst ) {
   data->intfPortIs( et1, port5 );
   data->intfPortDel( et1 );
   news();
   data->intfPortIs( et1, port6 );
   EXPECT_EQ( news(), ( Journal{
                         "vornalCommon vornalIntfToPort[Ethernet1]: absent -> unit0/port6/mod0",
                         "vornalCommon vornalIntfToPortCache[Ethernet1]: unit0/port5/mod0 -> "
                         "unit0/port6/mod0",
                      } ) );
}

TEST_F( InterfacePorts, SamePortAgainNotifiesNobody ) {
   data->intfPortIs( et1, port5 );
   news();
   data->intfPortIs( et1, port5 );
   EXPECT_EQ( news(), Journal{} );
   data->intfPortDel( et1 );
   news();
   data->intfPortIs( et1, port5 );
   EXPECT_EQ( news(),
              Journal{ "vornalCommon vornalIntfToPort[Ethernet1]: absent -> unit0/port5/mod0" } );
}

TEST_F( InterfacePorts, LosingWhatIsNotThereChangesNothing ) {
   data->intfPortDel( et1 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_FALSE( data->vornalIntfToPortCacheHas( et1 ) );
}

TEST_F( InterfacePorts, SubscriberOfTheLiveMapFindsTheOldPortInTheCache ) {
   VornalPort cached;
   VornalPort live;
   Kiv::Watch< VornalCommonSmData > watch( data, [ & ]( Kiv::Change const & change ) {
      if ( change.attribute() == VornalCommonSmData::vornalIntfToPortAttr() ) {
         cached = data->vornalIntfToPortCache( change.key< IntfId >() );
         live = data->vornalIntfToPort( change.key< IntfId >() );
      }
   } );
   watch.hasNotificationActiveIs( true );
   data->intfPortIs( et1, port5 );
   EXPECT_EQ( cached, port5 );
   data->intfPortIs( et1, port6 );
   EXPECT_EQ( cached, port5 );
   EXPECT_EQ( live, port6 );
   data->intfPortDel( et1 );
   EXPECT_EQ( cached, port6 );
   EXPECT_FALSE( live.isValid() );
}

TEST_F( InterfacePorts, PortLeadsBackToTheInterfaceThatHasItNow ) {
   EXPECT_TRUE( data->intfOfPort( port5 ).isEmpty() );
   data->intfPortIs( et1, port5 );
   data->intfPortIs( et2, port6 );
   EXPECT_EQ( data->intfOfPort( port5 ), et1 );
   EXPECT_EQ( data->intfOfPort( port6 ), et2 );
   data->intfPortDel( et1 );
   EXPECT_TRUE( data->intfOfPort( port5 ).isEmpty() );
   data->intfPortIs( et2, port5 );
   EXPECT_EQ( data->intfOfPort( port5 ), et2 );
   EXPECT_TRUE( data->intfOfPort( VornalPort( 1, 5 ) ).isEmpty() );
}

TEST_F( InterfacePorts, PortOfTwoInterfacesLeadsBackToTheFirst ) {
   data->intfPortIs( et2, port5 );
   EXPECT_EQ( data->intfOfPort( port5 ), et2 );
   data->intfPortIs( et1, port5 );
   EXPECT_EQ( data->intfOfPort( port5 ), et1 );
   data->intfPortDel( et1 );
   EXPECT_EQ( data->intfOfPort( port5 ), et2 );
   data->vornalIntfToPortDelAll();
   EXPECT_TRUE( data->intfOfPort( port5 ).isEmpty() );
}

TEST_F( InterfacePorts, UnitsAreWalkedInUnitOrder ) {
   data->vornalModIdIs( 2, 8 );
   data->vornalModIdIs( 0, 4 );
   data->vornalModIdIs( 1, 6 );
   std::string walked;
   for ( auto iter = data->vornalModIdIter(); iter; ++iter ) {
      walked += std::to_string( iter.key() ) + ":" + std::to_string( iter.value() ) + " ";
   }
   EXPECT_EQ( walked, "0:4 1:6 2:8 " );
}

}  // namespace VornalCommonSmDataTest
