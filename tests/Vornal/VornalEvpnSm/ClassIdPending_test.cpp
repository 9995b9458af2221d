// Whether a unit still needs its TCAM: while any class id that was asked for has not been granted.

#include <gtest/gtest.h>

#include <rapidcheck/gtest.h>

#include "../support/ClassIdLeaf.h"

namespace ClassIdPendingTest {

using namespace Support;
using VornalCommon::ClassId;

class ClassIdPending : public testing::Test {
 protected:
   ClassIdLeaf leaf;
};

TEST_F( ClassIdPending, AnUnansweredRequestKeepsEveryUnitWithARecord ) {
   auto & sm = leaf.start();
   leaf.classIdConfig->remoteESPeerVtepIs( ip( "10.0.0.2" ), true );
   EXPECT_FALSE( sm.unitUsesOrNeedsTcams( 0 ) ) << "no record";
   ASSERT_EQ( leaf.traces.size(), 2U );
   EXPECT_EQ( leaf.traces[ 0 ], "5 unitUsesOrNeedsTcams Mirel unit: 0" );
   EXPECT_EQ( leaf.tracesOf( "4 unitUsesOrNeedsTcams Mirel Line: " ),
              ( Lines{ leaf.traces[ 1 ] } ) );
   sm.tepIpToEntryIs( U16{ 0 } );
   leaf.forget();
   EXPECT_TRUE( sm.unitUsesOrNeedsTcams( 0 ) );
   EXPECT_EQ( leaf.traces,
              ( Lines{ "5 unitUsesOrNeedsTcams Mirel unit: 0", "5 unitUsesOrNeedsTcams unit: 0",
                       "4 unitUsesOrNeedsTcams ifpTcamsUsed: 0",
                       "4 unitUsesOrNeedsTcams ifpTcamsUsed: 0 ifpTcamsNeeded: 1" } ) );
}

TEST_F( ClassIdPending, OneUnansweredRequestKeepsEachUnit ) {
   ClassIdLeaf spine( 2 );
   auto & sm = spine.start();
   sm.tepIpToEntryIs( U16{ 0 } );
   sm.tepIpToEntryIs( U16{ 1 } );
   EXPECT_FALSE( sm.unitUsesOrNeedsTcams( 1 ) );
   spine.classIdConfig->remoteESPeerVtepIs( ip( "10.0.0.2" ), true );
   EXPECT_TRUE( sm.unitUsesOrNeedsTcams( 0 ) );
   EXPECT_TRUE( sm.unitUsesOrNeedsTcams( 1 ) );
}

TEST_F( ClassIdPending, AUnitThatUsesItsTcamIsToldWhetherAnIdIsPendingAllTheSame ) {
   leaf.interfaceIs( "Ethernet1", 0, 1 );
   leaf.share( "Ethernet1", { "10.0.0.2", "10.0.0.3" } );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   EXPECT_TRUE( sm.unitUsesOrNeedsTcams( 0 ) );
   EXPECT_EQ( leaf.traces.back(), "4 unitUsesOrNeedsTcams ifpTcamsUsed: 1 ifpTcamsNeeded: 1" );
   leaf.classIdIs( "10.0.0.3", 6 );
   EXPECT_TRUE( sm.unitUsesOrNeedsTcams( 0 ) );
   EXPECT_EQ( leaf.traces.back(), "4 unitUsesOrNeedsTcams ifpTcamsUsed: 1 ifpTcamsNeeded: 0" );
}

TEST_F( ClassIdPending, RequestsAndGrantsFoundAtTheStartCount ) {
   leaf.share( "Ethernet1", { "10.0.0.2" } );
   auto & sm = leaf.start();
   EXPECT_TRUE( sm.unitUsesOrNeedsTcams( 0 ) );
   ClassIdLeaf other;
   other.share( "Ethernet1", { "10.0.0.2" } );
   other.classIdIs( "10.0.0.2", 5 );
   EXPECT_FALSE( other.start().unitUsesOrNeedsTcams( 0 ) );
}

// The answer, found by a walk over all requests.
bool isAnyPending( ClassIdLeaf const & leaf ) {
   for ( auto iter = leaf.classIdConfig->remoteESPeerVtepIter(); iter; ++iter ) {
      if ( !leaf.classIdStatus->remoteESPeerVtepHas( iter.key() ) ) {
         return true;
      }
   }
   return false;
}

// Subscribed to requests and grants before the machine, so it is told of each change first. It
// holds the machine's answer against the walk's in the middle of the change.
class EarlySubscriber {
 public:
   explicit EarlySubscriber( ClassIdLeaf & leaf )
         : leaf_( leaf ),
           requests_( leaf.classIdConfig, [ this ]( Kiv::Change const & ) { compare(); } ),
           grants_( leaf.classIdStatus, [ this ]( Kiv::Change const & ) { compare(); } ) {
      requests_.hasNotificationActiveIs( true );
      grants_.hasNotificationActiveIs( true );
   }

   int compared() const { return compared_; }
   int differences() const { return differences_; }

 private:
   void compare() {
      if ( leaf_.isStarted() ) {
         ++compared_;
         differences_ += leaf_.sm().unitUsesOrNeedsTcams( 0 ) == isAnyPending( leaf_ ) ? 0 : 1;
      }
   }

   ClassIdLeaf & leaf_;
   Kiv::Watch< VornalCentral::I2EClassIdIndexConfig > requests_;
   Kiv::Watch< VornalCentral::I2EClassIdIndexStatus > grants_;
   int compared_ = 0;
   int differences_ = 0;
};

TEST_F( ClassIdPending, WhoIsToldBeforeTheMachineGetsTheWalksAnswerToo ) {
   EarlySubscriber const early( leaf );
   leaf.start().tepIpToEntryIs( U16{ 0 } );
   leaf.classIdConfig->remoteESPeerVtepIs( ip( "10.0.0.2" ), true );
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdDel( "10.0.0.2" );
   leaf.classIdConfig->remoteESPeerVtepDel( ip( "10.0.0.2" ) );
   EXPECT_EQ( early.compared(), 4 );
   EXPECT_EQ( early.differences(), 0 );
}

TEST_F( ClassIdPending, ARecordThatGoesAsAGrantArrivesIsNotKeptByThatGrant ) {
   // Told before the machine, somebody takes the other VTEP's segment away: with the grant there,
   // nothing is pending, and the unit has no rule left.
   leaf.interfaceIs( "Ethernet1", 0, 1 );
   leaf.share( "Ethernet1", { "10.0.0.2" } );
   Kiv::Watch< VornalCentral::I2EClassIdIndexStatus > early(
      leaf.classIdStatus, [ this ]( Kiv::Change const & change ) {
         if ( change.key< Pelk::IpGenAddr >() == ip( "10.0.0.9" ) ) {
            leaf.segmentDel( "Ethernet1" );
         }
      } );
   early.hasNotificationActiveIs( true );
   auto & sm = leaf.start();
   leaf.classIdIs( "10.0.0.2", 5 );
   leaf.classIdConfig->remoteESPeerVtepIs( ip( "10.0.0.9" ), true );
   leaf.classIdIs( "10.0.0.9", 6 );
   EXPECT_FALSE( sm.tepIpToEntryHas( 0 ) );
   EXPECT_EQ( leaf.used( kIngress ), 0U );
}

void doStep( ClassIdLeaf & leaf, U8 kind, std::string const & address ) {
   auto & requests = *leaf.classIdConfig;
   auto & grants = *leaf.classIdStatus;
   std::string const attribute = "remoteESPeerVtep";
   switch ( kind ) {
   case 0: requests.remoteESPeerVtepIs( ip( address ), true ); break;
   case 1: requests.remoteESPeerVtepDel( ip( address ) ); break;
   case 2: leaf.write( requests, attribute, address, "true" ); break;
   case 3: requests.typeData().find( attribute )->del( requests, address ); break;
   case 4: grants.remoteESPeerVtepIs( ip( address ), ClassId( 5 ) ); break;
   case 5: grants.remoteESPeerVtepDel( ip( address ) ); break;
   case 6: leaf.write( grants, attribute, address, "6" ); break;
   case 7: grants.typeData().find( attribute )->del( grants, address ); break;
   case 8: leaf.sm().handleInitialized(); break;
   case 9: leaf.sm().hasNotificationActiveIs( false ); break;
   case 10: leaf.sm().hasNotificationActiveIs( true ); break;
   default: leaf.sm().addTcamEntries( 0, ip( address ) );
   }
}

// NOLINTNEXTLINE(cppcoreguidelines-special-member-functions): the macro's class
RC_GTEST_PROP( ClassIdPendingModel, TheAnswerIsAWalksAnswerWhoeverWrites, () ) {
   auto const steps = *rc::gen::container< std::vector< std::pair< U8, U8 > > >(
      rc::gen::pair( rc::gen::inRange< U8 >( 0, 12 ), rc::gen::inRange< U8 >( 1, 5 ) ) );
   ClassIdLeaf leaf;
   Trace::levelsIs( "VornalEvpnSm", "" );
   EarlySubscriber const early( leaf );
   leaf.start().tepIpToEntryIs( U16{ 0 } );
   for ( auto const & [ kind, vtep ] : steps ) {
      doStep( leaf, kind, "10.0.0." + std::to_string( vtep ) );
      RC_ASSERT( leaf.sm().unitUsesOrNeedsTcams( 0 ) == isAnyPending( leaf ) );
   }
   RC_ASSERT( early.differences() == 0 );
}

TEST( ClassIdMany, ThousandsOfVtepsComeAndGoAndLeaveNothing ) {
   ClassIdLeaf leaf( 1, 8192 );
   Trace::levelsIs( "VornalEvpnSm", "" );
   leaf.interfaceIs( "Ethernet1", 0, 1 );
   std::vector< std::string > vteps;
   for ( int n = 0; n < 4000; ++n ) {
      vteps.push_back( "10.1." + std::to_string( n / 250 ) + "." + std::to_string( n % 250 ) );
   }
   auto & sm = leaf.start();
   leaf.share( "Ethernet1", vteps );
   EXPECT_EQ( leaf.requests().size(), 4000U );
   U16 classId = 1;
   for ( std::string const & address : vteps ) {
      leaf.classIdIs( address, classId++ );
   }
   EXPECT_EQ( leaf.used( kIngress ), 4002U ) << "two of them are unicast exemptions";
   EXPECT_EQ( leaf.used( kEgress ), 4000U );
   leaf.segmentDel( "Ethernet1" );
   EXPECT_EQ( leaf.requests().size(), 0U );
   EXPECT_EQ( leaf.used( kIngress ), 0U );
   EXPECT_EQ( leaf.used( kEgress ), 0U );
   EXPECT_FALSE( sm.tepIpToEntryHas( 0 ) );
}

}  // namespace ClassIdPendingTest
