// The segment directory is the segment status turned round, changed in an order that its readers
// rely on, and left as it is when nobody derives it any more.
#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

#include <Oxa/OxaEvpnTepSegmentSm.h>

#include "support/FamilyScribe.h"

namespace OxaEvpnTepSegmentSmTest {

using Evpn::EthernetSegmentStatus;
using Evpn::EvpnStatus;
using Oxa::EvpnTepSegment;
using Oxa::EvpnTepSegmentDir;
using Oxa::OxaEvpnTepSegmentSm;
using Pelk::IntfId;
using Pelk::IpGenAddr;
using Quelm::Ptr;
using Support::Journal;

IntfId const et1 = IntfId::fromString( "Ethernet1" );
IntfId const et2 = IntfId::fromString( "Ethernet2" );
IntfId const po7 = IntfId::fromString( "Port-Channel7" );
IpGenAddr const leaf2 = IpGenAddr::fromString( "10.0.0.2" );
IpGenAddr const leaf3 = IpGenAddr::fromString( "2001:db8::3" );

Ptr< EthernetSegmentStatus > segmentWith( IntfId const & intfId,
                                          std::vector< IpGenAddr > const & teps ) {
   auto const segment = Quelm::make< EthernetSegmentStatus >( intfId );
   for ( IpGenAddr const & tep : teps ) {
      segment->remoteTepIs( tep );
   }
   return segment;
}

class SegmentDirectory : public testing::Test {
 protected:
   Ptr< OxaEvpnTepSegmentSm > derived() {
      auto const sm =
         OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( status, directory, nullptr, nullptr );
      sm->hasNotificationActiveIs( true );
      return sm;
   }
   void share( IntfId const & intfId, IpGenAddr const & tep ) {
      status->segmentStatusIs( intfId )->remoteTepIs( tep );
   }
   void unshare( IntfId const & intfId, IpGenAddr const & tep ) {
      status->segmentStatus( intfId )->remoteTepDel( tep );
   }
   // The whole directory as text.
   std::string state() {
      std::string text;
      for ( auto iter = directory->tepSegmentIter(); iter; ++iter ) {
         text += iter.key().stringValue() + "{" +
                 Support::keysOf( iter.value()->segmentSetIter() ) + "}";
      }
      return text;
   }
   Journal news() { return std::exchange( seen, {} ); }

   Ptr< EvpnStatus > status = Quelm::make< EvpnStatus >( "status" );
   Ptr< EvpnTepSegmentDir > directory = Oxa::evpnTepSegmentDirFactory( "dir" );
   Journal seen;
   Support::FamilyScribe< EvpnTepSegmentDir, EvpnTepSegment > scribe{
      directory, EvpnTepSegmentDir::tepSegmentAttr(), seen,
      []( EvpnTepSegment const & tep ) { return Support::keysOf( tep.segmentSetIter() ); }
   };
};

TEST_F( SegmentDirectory, factoryMakesAnEmptyOne ) {
   EXPECT_EQ( directory->name(), "dir" );
   EXPECT_EQ( directory->tepSegments(), 0U );
   EXPECT_EQ( directory->users(), 2U );  // its scribe's and ours
}

TEST_F( SegmentDirectory, creatorHoldsWhatItIsGivenAndLeavesTheNotificationsToItsCaller ) {
   share( et1, leaf2 );
   auto const capabilities = Quelm::make< Bridging::HwCapabilities >( "capabilities" );
   auto const mapping = Quelm::make< Lag::LagPhyIntfMapping >( "mapping" );
   auto const sm =
      OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( status, directory, capabilities, mapping );
   EXPECT_EQ( sm->evpnStatus(), status );
   EXPECT_EQ( sm->tepSegmentDir(), directory );
   EXPECT_EQ( sm->bridgingHwCapabilities(), capabilities );
   EXPECT_EQ( sm->lagPhyIntfMapping(), mapping );
   EXPECT_FALSE( sm->hasNotificationActive() );
   EXPECT_EQ( state(), "" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet1}" );
}

TEST_F( SegmentDirectory, vtepEntersFilled ) {
   auto const sm = derived();
   share( et1, leaf2 );
   EXPECT_EQ( news(), Journal{ "dir tepSegment[10.0.0.2]: absent -> Oxa::EvpnTepSegment 10.0.0.2 "
                               "{Ethernet1}" } );
}

TEST_F( SegmentDirectory, vtepEntersWithEveryInterfaceSharedAtThatMoment ) {
   share( et1, leaf2 );
   share( et2, leaf2 );
   share( po7, leaf2 );
   auto const sm = derived();
   EXPECT_EQ( news(), Journal{ "dir tepSegment[10.0.0.2]: absent -> Oxa::EvpnTepSegment 10.0.0.2 "
                               "{Ethernet1 Ethernet2 Port-Channel7}" } );
}

TEST_F( SegmentDirectory, segmentThatComesWithItsVtepsIsTakenWhole ) {
   auto const sm = derived();
   status->segmentStatusIs( segmentWith( et1, { leaf2, leaf3 } ) );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet1}2001:db8::3{Ethernet1}" );
}

TEST_F( SegmentDirectory, furtherInterfaceJoinsTheEntityThatIsThere ) {
   auto const sm = derived();
   share( et1, leaf2 );
   auto const entity = directory->tepSegment( leaf2 );
   news();
   share( et2, leaf2 );
   EXPECT_EQ( news(), Journal{ "10.0.0.2 segmentSet[Ethernet2]: absent -> present" } );
   EXPECT_EQ( directory->tepSegment( leaf2 ), entity );
}

TEST_F( SegmentDirectory, interfaceLeavesTheSetAndTheLastTakesTheEntityOutAfterThat ) {
   auto const sm = derived();
   share( et1, leaf2 );
   share( et2, leaf2 );
   news();
   unshare( et1, leaf2 );
   EXPECT_EQ( news(), Journal{ "10.0.0.2 segmentSet[Ethernet1]: present -> absent" } );
   unshare( et2, leaf2 );
   EXPECT_EQ( news(), ( Journal{ "10.0.0.2 segmentSet[Ethernet2]: present -> absent",
                                 "dir tepSegment[10.0.0.2]: Oxa::EvpnTepSegment 10.0.0.2 -> "
                                 "absent" } ) );
}

TEST_F( SegmentDirectory, segmentThatGoesLeavesEveryVtepItWasSharedWith ) {
   auto const sm = derived();
   status->segmentStatusIs( segmentWith( et1, { leaf2, leaf3 } ) );
   share( et2, leaf3 );
   status->segmentStatusDel( et1 );
   EXPECT_EQ( state(), "2001:db8::3{Ethernet2}" );
}

TEST_F( SegmentDirectory, segmentThatIsGoneIsNotListenedToAnyMore ) {
   auto const sm = derived();
   share( et1, leaf2 );
   auto const gone = status->segmentStatusDel( et1 );
   news();
   gone->remoteTepIs( leaf3 );
   gone->remoteTepDel( leaf2 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( gone->publisher().subscribers(), 0U );
}

TEST_F( SegmentDirectory, segmentReplacedByAnotherObjectKeepsWhatBothShare ) {
   auto const sm = derived();
   status->segmentStatusIs( segmentWith( et1, { leaf2 } ) );
   auto const entity = directory->tepSegment( leaf2 );
   news();
   status->segmentStatusIs( segmentWith( et1, { leaf2, leaf3 } ) );
   EXPECT_EQ( news(),
              Journal{ "dir tepSegment[2001:db8::3]: absent -> Oxa::EvpnTepSegment 2001:db8::3 "
                       "{Ethernet1}" } );
   EXPECT_EQ( directory->tepSegment( leaf2 ), entity );
   status->segmentStatusIs( segmentWith( et1, { leaf3 } ) );
   EXPECT_EQ( state(), "2001:db8::3{Ethernet1}" );
}

TEST_F( SegmentDirectory, newObjectIsFollowedAfterAReplacement ) {
   auto const sm = derived();
   share( et1, leaf2 );
   status->segmentStatusIs( segmentWith( et1, { leaf2 } ) );
   unshare( et1, leaf2 );
   EXPECT_EQ( state(), "" );
}

TEST_F( SegmentDirectory, removingAllVtepsOfASegmentLeavesNothing ) {
   auto const sm = derived();
   status->segmentStatusIs( segmentWith( et1, { leaf2, leaf3 } ) );
   status->segmentStatus( et1 )->remoteTepDelAll();
   EXPECT_EQ( state(), "" );
   status->segmentStatusDelAll();
   EXPECT_EQ( state(), "" );
}

TEST_F( SegmentDirectory, segmentWithoutARemoteVtepIsNobodys ) {
   auto const sm = derived();
   status->segmentStatusIs( et1 );
   EXPECT_EQ( news(), Journal{} );
}

TEST_F( SegmentDirectory, staysWhenSwitchedOffAndIsBroughtIntoStepWhenOnAgain ) {
   auto const sm = derived();
   status->segmentStatusIs( segmentWith( et1, { leaf2 } ) );
   share( et2, leaf2 );
   sm->hasNotificationActiveIs( false );
   news();
   unshare( et1, leaf2 );
   status->segmentStatusDel( et2 );
   share( po7, leaf3 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet1 Ethernet2}" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "2001:db8::3{Port-Channel7}" );
   unshare( po7, leaf3 );
   EXPECT_EQ( state(), "" );
}

TEST_F( SegmentDirectory, staysWhenItsDerivationIsOutOfServiceAndIsBroughtIntoStepAfterwards ) {
   auto const sm = derived();
   status->segmentStatusIs( segmentWith( et1, { leaf2 } ) );
   share( et2, leaf2 );
   sm->kivDoZombieReactors( true );
   news();
   unshare( et1, leaf2 );
   status->segmentStatusDel( et2 );
   share( po7, leaf3 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet1 Ethernet2}" );
   sm->kivDoZombieReactors( false );
   EXPECT_EQ( state(), "2001:db8::3{Port-Channel7}" );
   unshare( po7, leaf3 );
   EXPECT_EQ( state(), "" );
}

TEST_F( SegmentDirectory, isDerivedOnlyByADerivationThatIsBothSwitchedOnAndInService ) {
   auto const sm = derived();
   sm->kivDoZombieReactors( true );
   sm->hasNotificationActiveIs( false );
   sm->hasNotificationActiveIs( true );
   share( et1, leaf2 );
   EXPECT_EQ( state(), "" );
   sm->hasNotificationActiveIs( false );
   sm->kivDoZombieReactors( false );
   EXPECT_EQ( state(), "" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet1}" );
}

// A reader of the directory ends the derivation as soon as the first VTEP has entered.
TEST_F( SegmentDirectory, isLeftAloneFromTheMomentThatAReaderEndsItsDerivation ) {
   share( et1, leaf2 );
   share( et1, leaf3 );
   share( et2, leaf3 );
   auto const sm =
      OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( status, directory, nullptr, nullptr );
   Kiv::Watch< EvpnTepSegmentDir > reader( directory, [ & ]( Kiv::Change const & ) {
      sm->kivDoZombieReactors( true );
   } );
   reader.hasNotificationActiveIs( true );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet1}" );
   EXPECT_EQ( status->segmentStatus( et1 )->publisher().subscribers(), 0U );
   EXPECT_EQ( status->segmentStatus( et2 )->publisher().subscribers(), 0U );
}

TEST_F( SegmentDirectory, vtepThatIsStillSharedKeepsItsEntityThroughCatchingUp ) {
   auto const sm = derived();
   share( et1, leaf2 );
   auto const entity = directory->tepSegment( leaf2 );
   sm->hasNotificationActiveIs( false );
   share( et2, leaf2 );
   unshare( et1, leaf2 );
   news();
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet2}" );
   EXPECT_EQ( directory->tepSegment( leaf2 ), entity );
}

TEST_F( SegmentDirectory, staysWhenItsDerivationIsDestroyed ) {
   auto sm = derived();
   share( et1, leaf2 );
   news();
   sm = nullptr;
   unshare( et1, leaf2 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( state(), "10.0.0.2{Ethernet1}" );
   EXPECT_EQ( status->publisher().subscribers(), 0U );
   EXPECT_EQ( status->segmentStatus( et1 )->publisher().subscribers(), 0U );
}

TEST_F( SegmentDirectory, switchingOnTwiceSubscribesOnce ) {
   auto const sm = derived();
   share( et1, leaf2 );
   news();
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( status->publisher().subscribers(), 1U );
   EXPECT_EQ( status->segmentStatus( et1 )->publisher().subscribers(), 1U );
}

TEST_F( SegmentDirectory, missingInputsDeriveNothing ) {
   for ( auto const & sm :
         { OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( nullptr, directory, nullptr, nullptr ),
           OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( status, nullptr, nullptr, nullptr ),
           OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( nullptr, nullptr, nullptr, nullptr ) } ) {
      sm->hasNotificationActiveIs( true );
      share( et1, leaf2 );
      status->segmentStatusDel( et1 );
      sm->hasNotificationActiveIs( false );
   }
   EXPECT_EQ( news(), Journal{} );
}

// --- Any edits

struct Edit {
   enum Kind {
      Share,
      Unshare,
      DeleteSegment,
      Replace,
      SwitchOff,
      SwitchOn,
      OutOfService,
      InService,
      Rebuild
   } kind;
   int segment;
   int tep;
};

std::ostream & operator<<( std::ostream & out, Edit const & edit ) {
   static char const * const name[] = { "Share",        "Unshare",   "DeleteSegment",
                                        "Replace",      "SwitchOff", "SwitchOn",
                                        "OutOfService", "InService", "Rebuild" };
   return out << name[ edit.kind ] << " et" << edit.segment << " leaf" << edit.tep;
}

rc::Gen< std::vector< Edit > > anyEdits() {
   auto const kind = rc::gen::weightedElement< Edit::Kind >( { { 8, Edit::Share },
                                                               { 5, Edit::Unshare },
                                                               { 2, Edit::DeleteSegment },
                                                               { 2, Edit::Replace },
                                                               { 1, Edit::SwitchOff },
                                                               { 2, Edit::SwitchOn },
                                                               { 1, Edit::OutOfService },
                                                               { 2, Edit::InService },
                                                               { 1, Edit::Rebuild } } );
   return rc::gen::container< std::vector< Edit > >(
      rc::gen::construct< Edit >( kind, rc::gen::inRange( 0, 4 ), rc::gen::inRange( 0, 4 ) ) );
}

using Shared = std::map< IpGenAddr, std::set< IntfId > >;

Shared computed( EvpnStatus const & status ) {
   Shared shared;
   for ( auto segment = status.segmentStatusIter(); segment; ++segment ) {
      for ( auto iter = segment.value()->remoteTepIter(); iter; ++iter ) {
         shared[ iter.key() ].insert( segment.key() );
      }
   }
   return shared;
}

Shared held( EvpnTepSegmentDir const & directory ) {
   Shared shared;
   for ( auto tep = directory.tepSegmentIter(); tep; ++tep ) {
      shared[ tep.key() ];
      for ( auto iter = tep.value()->segmentSetIter(); iter; ++iter ) {
         shared[ tep.key() ].insert( iter.key() );
      }
   }
   return shared;
}

void apply( Edit const & edit, EvpnStatus & status, Ptr< EvpnTepSegmentDir > const & directory,
            Ptr< OxaEvpnTepSegmentSm > & sm ) {
   IntfId const segment = IntfId::fromString( "Ethernet" + std::to_string( edit.segment ) );
   IpGenAddr const tep = IpGenAddr::fromString( "10.0.0." + std::to_string( edit.tep ) );
   switch ( edit.kind ) {
   case Edit::Share: status.segmentStatusIs( segment )->remoteTepIs( tep ); break;
   case Edit::Unshare: status.segmentStatusIs( segment )->remoteTepDel( tep ); break;
   case Edit::DeleteSegment: status.segmentStatusDel( segment ); break;
   case Edit::Replace: status.segmentStatusIs( segmentWith( segment, { tep, leaf3 } ) ); break;
   case Edit::SwitchOff: sm->hasNotificationActiveIs( false ); break;
   case Edit::SwitchOn: sm->hasNotificationActiveIs( true ); break;
   case Edit::OutOfService: sm->kivDoZombieReactors( true ); break;
   case Edit::InService: sm->kivDoZombieReactors( false ); break;
   case Edit::Rebuild:
      sm = nullptr;
      sm = OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( Ptr< EvpnStatus >( &status ), directory,
                                                       nullptr, nullptr );
      break;
   }
}

RC_GTEST_PROP( SegmentDirectoryModel, isInStepWhileOnAndInServiceAndStaysAsItIsOtherwise, () ) {
   auto const status = Quelm::make< EvpnStatus >( "status" );
   auto const directory = Oxa::evpnTepSegmentDirFactory( "dir" );
   Kiv::Watch< EvpnTepSegmentDir > watch( directory, []( Kiv::Change const & change ) {
      RC_ASSERT( !change.rawOldValue().get() != !change.rawNewValue().get() );  // never replaced
   } );
   watch.hasNotificationActiveIs( true );
   auto sm = OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( status, directory, nullptr, nullptr );
   sm->hasNotificationActiveIs( true );
   for ( Edit const & edit : *anyEdits() ) {
      Shared const before = held( *directory );
      apply( edit, *status, directory, sm );
      bool const isDerived = sm->hasNotificationActive() && !sm->isZombie();
      RC_ASSERT( held( *directory ) == ( isDerived ? computed( *status ) : before ) );
   }
}

}  // namespace OxaEvpnTepSegmentSmTest
