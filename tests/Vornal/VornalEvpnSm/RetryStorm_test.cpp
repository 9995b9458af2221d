// Any sequence of VNI changes on one tunnel interface while others fill and free the ingress group:
// every VNI is either programmed or queued, never both and never twice, and none waits while there
// is room.

#include <gtest/gtest.h>

#include <ostream>

#include <rapidcheck/gtest.h>

#include "../support/RoutedSwitch.h"

namespace {

using Support::Machine;
using Support::RoutedSwitch;
using Support::Variant;
using VniOfVrf = RoutedSwitch::VniOfVrf;
using Vnis = RoutedSwitch::Vnis;

constexpr std::size_t kRounds = 1000;
constexpr U32 kVrfs = 8;
constexpr U32 kVnis = 24;

struct Round {
   enum Kind { Map, Unmap, Fill, Free, Turn } kind;
   U32 vrf;
   U32 vni;
   U32 entries;
};

std::ostream & operator<<( std::ostream & out, Round const & round ) {
   static char const * const name[] = { "Map", "Unmap", "Fill", "Free", "Turn" };
   return out << name[ round.kind ] << " vrf" << round.vrf << ' ' << round.vni << ' '
              << round.entries;
}

rc::Gen< std::vector< Round > > storm() {
   auto const kind = rc::gen::weightedElement< Round::Kind >( { { 6, Round::Map },
                                                                { 3, Round::Unmap },
                                                                { 5, Round::Fill },
                                                                { 3, Round::Free },
                                                                { 4, Round::Turn } } );
   auto const rounds = rc::gen::container< std::vector< Round > >(
      kRounds, rc::gen::construct< Round >( kind, rc::gen::inRange< U32 >( 0, kVrfs ),
                                            rc::gen::inRange< U32 >( 50001, 50001 + kVnis ),
                                            rc::gen::inRange< U32 >( 1, kVrfs ) ) );
   // Every storm uses the whole of each range, the first ones too.
   return rc::gen::resize( rc::kNominalSize, rounds );
}

class Storm {
 public:
   Storm() {
      Trace::levelsIs( "VornalEvpnSm", "" );
      leaf.tunnelIs();
      sm = leaf.machineNew( Variant::EgressMask );
      leaf.roomIs( 0 );
   }

   void play( Round const & round ) {
      std::string const name = "vrf" + std::to_string( round.vrf );
      switch ( round.kind ) {
      case Round::Map: map( name, round.vni ); break;
      case Round::Unmap:
         mapped.erase( name );
         leaf.vniDel( name );
         break;
      case Round::Fill: foreignIs( foreign() + std::min( round.entries, leaf.room() ) ); break;
      case Round::Free: foreignIs( foreign() - std::min( round.entries, foreign() ) ); break;
      case Round::Turn: leaf.wakeUps(); break;
      }
      leaf.forget();
   }

   // Every mapped VNI is programmed or queued under its VRF, and nothing else is.
   void nothingIsLost() const {
      Vnis accounted = RoutedSwitch::vnisRecorded( sm );
      for ( auto const & [ name, vni ] : RoutedSwitch::queued( sm ) ) {
         RC_ASSERT( accounted.insert( vni ).second );
         RC_ASSERT( mapped.at( name ) == vni );
      }
      Vnis wanted;
      for ( auto const & [ name, vni ] : mapped ) {
         wanted.insert( vni );
      }
      RC_ASSERT( accounted == wanted );
      RC_ASSERT( leaf.vnisOnChip() == RoutedSwitch::vnisRecorded( sm ) );
      RC_ASSERT( leaf.ingress()->used( 0 ) == RoutedSwitch::vnisRecorded( sm ).size() );
   }

   // What fits is programmed.
   void nothingWaitsForNothing() {
      leaf.wakeUps();
      RC_ASSERT( RoutedSwitch::queued( sm ).empty() || leaf.room() == 0 );
   }

   std::size_t waiting() const { return RoutedSwitch::queued( sm ).size(); }

 private:
   // A VNI belongs to one VRF at a time.
   void map( std::string const & name, U32 vni ) {
      for ( auto const & [ other, itsVni ] : mapped ) {
         if ( itsVni == vni ) {
            return;
         }
      }
      mapped[ name ] = vni;
      leaf.vniIs( name, vni );
   }
   U32 foreign() const { return leaf.ingress()->foreignEntries( 0 ); }
   void foreignIs( U32 count ) { leaf.ingress()->foreignEntriesIs( 0, count ); }

   RoutedSwitch leaf;
   Machine sm;
   VniOfVrf mapped;
};

RC_GTEST_PROP( RetryStorm, EndsWithWhatFitsProgrammedAndTheRestQueued, () ) {
   auto const rounds = *storm();
   Storm storm;
   std::size_t longest = 0;
   for ( Round const & round : rounds ) {
      storm.play( round );
      storm.nothingIsLost();
      longest = std::max( longest, storm.waiting() );
      if ( round.kind == Round::Turn ) {
         storm.nothingWaitsForNothing();
      }
   }
   storm.nothingWaitsForNothing();
   storm.nothingIsLost();
   RC_ASSERT( longest > 0 );  // the group has been full
}

}  // namespace
