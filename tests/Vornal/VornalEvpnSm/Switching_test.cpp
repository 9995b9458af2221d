// The machine's inputs, switched on and off in a fixed order, and what being out of service keeps
// from its handlers: two of them, and the clock's.

#include <gtest/gtest.h>

#include "../support/LocalBiasSwitch.h"
#include "../support/Observed.h"
#include "../support/Tcam.h"
#include "../support/Variants.h"

namespace {

using Quelm::make;
using Support::intf;
using Support::ip;
using Support::Lines;
using Support::Listener;
using Support::LocalBiasSwitch;
using Support::Machine;
using Support::Observed;
using Support::Variant;

// An entry manager that tells when its publisher is asked for.
class WatchedManager final : public Support::EntryManager {
 public:
   WatchedManager( Support::Journal & journal, std::function< void() > onSubscription )
         : EntryManager( Vornal::kIfpLocalBiasGroup, journal ),
           onSubscription_( std::move( onSubscription ) ) {}

   Kiv::Publisher & publisher() const override {
      onSubscription_();
      return EntryManager::publisher();
   }

 private:
   std::function< void() > onSubscription_;
};

// A machine, every input of which says when the machine subscribes to it or unsubscribes from it,
// and when the machine, as its last user, lets go of it.
class ObservedMachine {
 public:
   explicit ObservedMachine( Variant variant ) {
      auto const dir = observed< Oxa::EvpnTepSegmentDir >( "dir" );
      dir->tepSegmentIs( observed< Oxa::EvpnTepSegment >( "segment", ip( "10.0.0.2" ) ) );
      auto const vtiDir = observed< Vxlan::VtiStatusDir >( "vtiDir" );
      vtiDir->vtiStatusIs( observed< Vxlan::VtiStatus >( "vti", intf( "Vxlan1" ) ) );
      auto const mapping = observed< Lag::LagPhyIntfMapping >( "lagMapping" );
      mapping->lagPhyIntfConfigIs(
         observed< Lag::LagPhyIntfConfig >( "lag", intf( "Port-Channel1" ) ) );
      auto const vcsd = observed< Vornal::VornalCommonSmData >( "vcsd" );
      auto const vpIndexStatus = observed< VornalCentral::VpIndexStatus >( "vpIndexStatus" );
      auto const evpnStatus = observed< Evpn::EvpnStatus >( "evpnStatus" );
      auto const manager =
         make< WatchedManager >( tcam_, [ this ] { note( "subscription of ", "tcamManager" ); } );
      machine =
         variant == Variant::EgressMask
            ? Vornal::evpnMultihomingLocalBiasWithEgressMaskSmFactory( vcsd, dir, vpIndexStatus,
                                                                       evpnStatus, vtiDir, manager,
                                                                       leaf.activity.clock(),
                                                                       nullptr, mapping )
            : Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
                 vcsd, dir, vpIndexStatus, evpnStatus, vtiDir, manager, leaf.activity.clock(),
                 nullptr, mapping, nullptr,
                 make< VornalCentral::I2EClassIdIndexConfig >( "requests" ),
                 observed< VornalCentral::I2EClassIdIndexStatus >( "grants" ) );
      watched_ = machine.get();
   }
   ObservedMachine( ObservedMachine const & ) = delete;
   ObservedMachine & operator=( ObservedMachine const & ) = delete;
   ~ObservedMachine() { watched_ = nullptr; }

   // What has happened since the last time.
   Lines events() { return std::exchange( events_, {} ); }
   // Whether a wake-up of the machine's clock calls its handler now. Asked at each event.
   bool isClockHeard() {
      std::size_t const before = handled();
      machine->kivClock().timeMinIs( leaf.activity.clock()->now() );
      leaf.activity.clock()->fireOne();
      return handled() > before;
   }

   LocalBiasSwitch leaf;
   Machine machine;
   // What is written behind each event.
   std::function< std::string( Vornal::EvpnMultihomingLocalBiasSm const & ) > remark =
      []( auto const & ) { return std::string(); };

 private:
   template< typename T, typename... Arguments >
   Quelm::Ptr< Observed< T > > observed( std::string const & name,
                                         Arguments const &... arguments ) {
      Listener const listener{ .onSubscription = [ this,
                                                   name ] { note( "subscription of ", name ); },
                               .onRelease = [ this, name ] { note( "release of ", name ); } };
      if constexpr ( sizeof...( arguments ) == 0 ) {
         return make< Observed< T > >( listener, name );
      } else {
         return make< Observed< T > >( listener, arguments... );
      }
   }
   void note( std::string const & what, std::string const & name ) {
      if ( watched_ ) {
         events_.push_back( what + name + remark( *watched_ ) );
      }
   }
   std::size_t handled() const {
      return leaf.tracesOf( "8 void Vornal::EvpnMultihomingLocalBiasSm::handleTime()" ).size();
   }

   Support::Journal tcam_;
   Lines events_;
   Vornal::EvpnMultihomingLocalBiasSm const * watched_ = nullptr;
};

class Switching : public testing::TestWithParam< Variant > {
 protected:
   static bool isClassId() { return GetParam() == Variant::I2EClassId; }
   // The lines that only the class-id variant has come last.
   static Lines withGrants( Lines lines, Lines const & grants ) {
      if ( isClassId() ) {
         lines.insert( lines.end(), grants.begin(), grants.end() );
      }
      return lines;
   }
};

INSTANTIATE_TEST_SUITE_P( Lifecycle, Switching, Support::bothVariants, Support::nameOfVariant );

Lines const subscriptions{
   "subscription of vcsd",       "subscription of dir",     "subscription of vpIndexStatus",
   "subscription of evpnStatus", "subscription of vtiDir",  "subscription of tcamManager",
   "subscription of lagMapping", "subscription of segment", "subscription of vti",
   "subscription of lag",
};

TEST_P( Switching, GoesThroughTheInputsInOrderThenTheNestedReactorsThenTheGrants ) {
   ObservedMachine observed( GetParam() );
   Lines const order = withGrants( subscriptions, { "subscription of grants" } );
   observed.events();
   observed.machine->hasNotificationActiveIs( false );
   EXPECT_EQ( observed.events(), order );
   observed.machine->hasNotificationActiveIs( true );
   EXPECT_EQ( observed.events(), order );
}

// The clock is neither subscribed to nor published, so it is tried out at every step.
TEST_P( Switching, SwitchesTheClockBetweenTheEntryManagerAndThePortChannels ) {
   ObservedMachine observed( GetParam() );
   Lines heard;
   observed.machine->hasNotificationActiveIs( false );
   observed.events();
   observed.remark = [ & ]( auto const & ) {
      return std::string( observed.isClockHeard() ? ", clock heard" : "" );
   };
   observed.machine->hasNotificationActiveIs( true );
   Lines const on = observed.events();
   EXPECT_EQ( on[ 5 ], "subscription of tcamManager" );
   EXPECT_EQ( on[ 6 ], "subscription of lagMapping, clock heard" );
   observed.machine->hasNotificationActiveIs( false );
   Lines const off = observed.events();
   EXPECT_EQ( off[ 5 ], "subscription of tcamManager, clock heard" );
   EXPECT_EQ( off[ 6 ], "subscription of lagMapping" );
}

TEST_P( Switching, SwitchedOffTheClockCallsNobodyAndSwitchedOnItCallsAgain ) {
   LocalBiasSwitch leaf;
   auto const sm = leaf.machineNew( GetParam() );
   sm->handleTcamExhaustion();
   sm->hasNotificationActiveIs( false );
   leaf.forget();
   EXPECT_TRUE( leaf.activity.clock()->fireOne() );
   EXPECT_EQ( leaf.traces, Lines{} );
   sm->hasNotificationActiveIs( true );
   sm->handleTcamExhaustion();
   leaf.forget();
   EXPECT_TRUE( leaf.activity.clock()->fireOne() );
   EXPECT_EQ( leaf.traces, Lines{ "8 void Vornal::EvpnMultihomingLocalBiasSm::handleTime()" } );
}

// --- The nested reactors

// One reactor of each kind, on 10.0.0.2, Vxlan1 and Port-Channel3.
struct Reactors {
   explicit Reactors( Vornal::EvpnMultihomingLocalBiasSm & sm )
         : all{ sm.oxaEvpnTepSegment( ip( "10.0.0.2" ) ), sm.vtiStatus( intf( "Vxlan1" ) ),
                sm.lagPhyIntfConfig( intf( "Port-Channel3" ) ) } {}
   // A letter each, segment, tunnel and port channel: "+" is switched on, "-" off.
   std::string switches() const {
      std::string text;
      for ( auto const & reactor : all ) {
         text += reactor->hasNotificationActive() ? '+' : '-';
      }
      return text;
   }

   std::vector< Quelm::Ptr< Kiv::Entity > > all;
};

// One of each of what nested reactors watch.
void publishMembers( LocalBiasSwitch & leaf ) {
   leaf.segmentIs( "Ethernet1", { "10.0.0.2" } );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan1" ) );
   leaf.memberIs( "Port-Channel3", "Ethernet3" );
}

TEST_P( Switching, SwitchesTheNestedReactorsOfAllThreeKinds ) {
   LocalBiasSwitch leaf;
   publishMembers( leaf );
   auto const sm = leaf.machineNew( GetParam() );
   Reactors const reactors( *sm );
   EXPECT_EQ( reactors.switches(), "+++" );
   sm->hasNotificationActiveIs( false );
   EXPECT_EQ( reactors.switches(), "---" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( reactors.switches(), "+++" );
}

TEST_P( Switching, AllReactorsOfOneKindAreRetiredAtOnceAndTheOthersStay ) {
   LocalBiasSwitch leaf;
   publishMembers( leaf );
   leaf.segmentIs( "Ethernet2", { "10.0.0.3" } );
   leaf.memberIs( "Port-Channel4", "Ethernet4" );
   auto const sm = leaf.machineNew( GetParam() );
   Reactors const reactors( *sm );
   sm->oxaEvpnTepSegmentDelAll();
   EXPECT_EQ( reactors.switches(), "-++" );
   EXPECT_FALSE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.2" ) ) );
   EXPECT_FALSE( sm->oxaEvpnTepSegmentHas( ip( "10.0.0.3" ) ) );
   sm->lagPhyIntfConfigDelAll();
   EXPECT_EQ( reactors.switches(), "-+-" );
   EXPECT_FALSE( sm->lagPhyIntfConfigHas( intf( "Port-Channel3" ) ) );
   EXPECT_FALSE( sm->lagPhyIntfConfigHas( intf( "Port-Channel4" ) ) );
   sm->vtiStatusDelAll();
   EXPECT_EQ( reactors.switches(), "---" );
   EXPECT_FALSE( sm->vtiStatusHas( intf( "Vxlan1" ) ) );
   for ( auto const & reactor : reactors.all ) {
      EXPECT_TRUE( reactor->isZombie() );
   }
}

// --- The records

TEST_P( Switching, RecordsAreEmptiedEachByItself ) {
   LocalBiasSwitch leaf;
   auto const sm = leaf.machineNew( GetParam() );
   sm->tepIpToEntryIs( U16{ 0 } );
   sm->tepIpToEntryIs( U16{ 1 } );
   sm->vniToTcamEntryIdIs( 50001, 7 );
   sm->l2UcastRuleInstalledIs( 0, 1 );
   sm->l3UcastRuleInstalledIs( 0, 2 );
   sm->unprogrammedTcamRulesListIs( L3::VrfName( "red" ), 50002 );
   // A letter for each record that is not empty.
   auto const left = [ & ] {
      return std::string( sm->tepIpToEntryIter() ? "t" : "" ) +
             ( sm->vniToTcamEntryIdIter() ? "v" : "" ) +
             ( sm->l2UcastRuleInstalledIter() ? "2" : "" ) +
             ( sm->l3UcastRuleInstalledIter() ? "3" : "" ) +
             ( sm->unprogrammedTcamRulesListIter() ? "u" : "" );
   };
   EXPECT_EQ( left(), "tv23u" );
   sm->tepIpToEntryDelAll();
   EXPECT_EQ( left(), "v23u" );
   sm->vniToTcamEntryIdDelAll();
   EXPECT_EQ( left(), "23u" );
   sm->l2UcastRuleInstalledDelAll();
   EXPECT_EQ( left(), "3u" );
   sm->l3UcastRuleInstalledDelAll();
   EXPECT_EQ( left(), "u" );
   sm->unprogrammedTcamRulesListDelAll();
   EXPECT_EQ( left(), "" );
}

TEST( ClassIdSwitching, ClassIdsAndTheirCountsAreEmptiedEachByItself ) {
   LocalBiasSwitch leaf;
   auto const machine = leaf.machineNew( Variant::I2EClassId );
   auto & sm = static_cast< Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm & >( *machine );
   for ( char const * const address : { "10.0.0.2", "10.0.0.3" } ) {
      sm.i2eTepIpClassIdIs( ip( address ), VornalCommon::ClassId( 5 ) );
      sm.i2eTepIpClassIdRefCountIs( ip( address ), 1 );
   }
   sm.i2eTepIpClassIdDelAll();
   EXPECT_FALSE( sm.i2eTepIpClassIdIter() );
   EXPECT_FALSE( sm.i2eTepIpClassId( ip( "10.0.0.2" ) ).isValid() );
   EXPECT_TRUE( sm.i2eTepIpClassIdRefCountIter() );
   sm.i2eTepIpClassIdRefCountDelAll();
   EXPECT_FALSE( sm.i2eTepIpClassIdRefCountIter() );
}

// --- Out of service

TEST_P( Switching, OutOfServiceOnlySegmentsExhaustionAndGrantsAreNotHandled ) {
   LocalBiasSwitch leaf;
   publishMembers( leaf );
   leaf.segmentIs( "Port-Channel3", {} );
   leaf.interfaceIs( "Ethernet1", 0, 5 );
   auto const sm = leaf.machineNew( GetParam() );
   sm->kivDoZombieReactors( true );
   auto const firstTraceOf = [ & ]( auto const & change ) {
      leaf.forget();
      change();
      return leaf.traces.empty() ? std::string() : leaf.traces.front();
   };
   EXPECT_EQ( firstTraceOf( [ & ] { leaf.dir->tepSegmentIs( ip( "10.0.0.7" ) ); } ), "" );
   EXPECT_EQ( firstTraceOf( [ & ] { sm->tcamManager()->exhaustedIs( 0, true ); } ), "" );
   EXPECT_EQ( firstTraceOf( [ & ] { leaf.classIdIs( "10.0.0.7", 5 ); } ), "" );

   EXPECT_EQ( firstTraceOf( [ & ] { leaf.interfaceIs( "Ethernet9", 0, 9 ); } ),
              "5 handleVornalIntfToPort, intfId: Ethernet9" );
   EXPECT_EQ( firstTraceOf( [ & ] { leaf.vtepIs( "10.0.0.8", 8 ); } ),
              "5 handleRemoteVport, rvk.vtepIp: 10.0.0.8" );
   EXPECT_EQ( firstTraceOf( [ & ] { leaf.evpnStatus->segmentStatusIs( intf( "Ethernet9" ) ); } ),
              "8 void Vornal::EvpnMultihomingLocalBiasSm::handleSegmentStatus()" );
   EXPECT_EQ( firstTraceOf( [ & ] {
                 leaf.dir->tepSegment( ip( "10.0.0.2" ) )->segmentSetIs( intf( "Ethernet9" ) );
              } ),
              "5 handleSegmentSet, intfId : Ethernet9" );
   EXPECT_EQ( firstTraceOf( [ & ] {
                 leaf.vtiStatusDir->vtiStatus( intf( "Vxlan1" ) )
                    ->vrfToVniMapIs( L3::VrfName( "red" ), Vxlan::VniExtOrNone( 50001 ) );
              } ),
              "8 void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::"
              "handleVrfToVniMap(L3::VrfName, U32, U32) vrf red" );
   EXPECT_EQ( firstTraceOf( [ & ] { leaf.memberIs( "Port-Channel3", "Ethernet9" ); } ),
              "5 handleLagMember lag: Port-Channel3 changed, addedEthernet9" );
   leaf.vtiStatusDir->vtiStatusIs( intf( "Vxlan2" ) );
   EXPECT_TRUE( sm->vtiStatusHas( intf( "Vxlan2" ) ) );
   leaf.vtiStatusDir->vtiStatusDel( intf( "Vxlan2" ) );
   EXPECT_FALSE( sm->vtiStatusHas( intf( "Vxlan2" ) ) );
   leaf.memberIs( "Port-Channel4", "Ethernet4" );
   EXPECT_TRUE( sm->lagPhyIntfConfigHas( intf( "Port-Channel4" ) ) );
   leaf.memberDel( "Ethernet4" );
   EXPECT_FALSE( sm->lagPhyIntfConfigHas( intf( "Port-Channel4" ) ) );
}

// --- The end

TEST_P( Switching, EndingItIsSwitchedOffThenOutOfServiceBeforeItLetsGoOfAnything ) {
   ObservedMachine observed( GetParam() );
   auto * const machine = observed.machine.get();
   observed.events();
   observed.remark = []( Vornal::EvpnMultihomingLocalBiasSm const & sm ) {
      return std::string( sm.isZombie() ? ", out of service" : "" );
   };
   ASSERT_TRUE( machine );
   observed.machine = nullptr;
   Lines const events = observed.events();
   Lines const switchedOff = withGrants( subscriptions, { "subscription of grants" } );
   ASSERT_GT( events.size(), switchedOff.size() );
   auto const firstRelease = events.begin() + static_cast< std::ptrdiff_t >( switchedOff.size() );
   EXPECT_EQ( Lines( events.begin(), firstRelease ), switchedOff );
   Lines released( firstRelease, events.end() );
   for ( std::string const & line : released ) {
      EXPECT_TRUE( line.starts_with( "release of " ) && line.ends_with( ", out of service" ) )
         << line;
   }
}

}  // namespace
