// The rows of a table of inputs: which change calls which handler, and with what.
#include <gtest/gtest.h>

#include "support/Journal.h"
#include "support/Switch.h"

namespace KivHandlersTest {

using Kiv::Change;
using Quelm::Ptr;
using Support::Journal;
using Support::Switch;

// Watches a switch. The table is the class's last lines.
class Monitor {
 public:
   explicit Monitor( Ptr< Switch > const & leaf ) : leaf_( leaf ) {
      for ( auto * const watch : { &mtu_, &route_, &banner_, &vlan_ } ) {
         watch->hasNotificationActiveIs( true );
      }
   }

   bool isZombie() const { return isOutOfService; }

   Journal story;
   bool isOutOfService = false;

 private:
   void handleMtu() { story.push_back( "mtu " + std::to_string( leaf_->mtu() ) ); }
   void handleRoute( std::string const & prefix ) { story.push_back( "route " + prefix ); }
   // An overload, as handlers have them. The row takes the one with the key.
   void handleRoute() { story.push_back( "all routes" ); }
   void handleBanner( Change const & change ) {
      story.push_back( *change.oldValue< std::string >() + " -> " +
                       *change.newValue< std::string >() );
   }
   void handleVlan( U16 const & vlan ) { story.push_back( "vlan " + std::to_string( vlan ) ); }

   Ptr< Switch > leaf_;
   Kiv::Watch< Switch > mtu_{ leaf_,
                              Kiv::onAttribute( Switch::mtuAttr(), this, &Monitor::handleMtu ) };
   Kiv::Watch< Switch > route_{ leaf_,
                                Kiv::onKey( Switch::routeAttr(), this, &Monitor::handleRoute ) };
   Kiv::Watch< Switch > banner_{ leaf_, Kiv::onChange( Switch::bannerAttr(), this,
                                                       &Monitor::handleBanner ) };
   Kiv::Watch< Switch > vlan_{ leaf_, Kiv::inService( this, Kiv::onKey( Switch::vlanAttr(), this,
                                                                        &Monitor::handleVlan ) ) };
};

class KivHandlers : public testing::Test {
 protected:
   Journal story() { return std::exchange( monitor.story, {} ); }

   Ptr< Switch > leaf1 = Quelm::make< Switch >( "leaf1" );
   Monitor monitor{ leaf1 };
};

TEST_F( KivHandlers, AnAttributeCallsItsHandlerAlone ) {
   leaf1->mtuIs( 9000 );
   EXPECT_EQ( story(), Journal{ "mtu 9000" } );
   leaf1->noteIs( 1, "spare" );
   EXPECT_EQ( story(), Journal{} );
}

TEST_F( KivHandlers, AnAttributeWithKeysHandsOverTheKey ) {
   leaf1->routeIs( "10.0.0.0/8", 20 );
   leaf1->routeIs( "10.0.0.0/8", 30 );
   leaf1->routeDel( "10.0.0.0/8" );
   EXPECT_EQ( story(), ( Journal{ "route 10.0.0.0/8", "route 10.0.0.0/8", "route 10.0.0.0/8" } ) );
}

TEST_F( KivHandlers, AHandlerOfChangesSeesOldAndNew ) {
   leaf1->bannerIs( "keep out" );
   leaf1->bannerIs( "welcome" );
   EXPECT_EQ( story(), ( Journal{ " -> keep out", "keep out -> welcome" } ) );
}

TEST_F( KivHandlers, OutOfServiceTheRowsThatSaySoCallNobody ) {
   leaf1->vlanIs( 100 );
   monitor.isOutOfService = true;
   leaf1->vlanIs( 200 );
   leaf1->mtuIs( 1500 );
   monitor.isOutOfService = false;
   leaf1->vlanIs( 300 );
   EXPECT_EQ( story(), ( Journal{ "vlan 100", "mtu 1500", "vlan 300" } ) );
}

}  // namespace KivHandlersTest
