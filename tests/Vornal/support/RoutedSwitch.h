// leaf1 as a router: VRFs that are routed over a tunnel interface, each with a VNI, and an ingress
// group that it shares with others.
//
// It has an Ethernet segment on Ethernet1 from the start, shared with nobody yet: enough for
// per-VNI rules, and none of the VTEPs' rules is in the way.
#pragma once

#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <Decorators/FailingSdk.h>
#include <Snapshot/Rules.h>

#include "LocalBiasSwitch.h"
#include "Stops.h"

namespace Support {

inline L3::VrfName vrf( std::string const & name ) {
   return L3::VrfName( name );
}

class RoutedSwitch : public LocalBiasSwitch {
 public:
   static constexpr U32 kCapacity = 64;
   using Vnis = std::set< U32 >;
   using VniOfVrf = std::map< std::string, U32 >;

   explicit RoutedSwitch( U16 units = 1 ) : LocalBiasSwitch( units, kCapacity ) {
      segmentIs( "Ethernet1", {} );
   }

   // --- What other agents publish
   void tunnelIs( std::string const & tunnel = "Vxlan1" ) {
      vtiStatusDir->vtiStatusIs( intf( tunnel ) );
   }
   void tunnelDel( std::string const & tunnel = "Vxlan1" ) {
      vtiStatusDir->vtiStatusDel( intf( tunnel ) );
   }
   void vniIs( std::string const & name, U32 vni, std::string const & tunnel = "Vxlan1" ) {
      vtiStatusDir->vtiStatus( intf( tunnel ) )
         ->vrfToVniMapIs( vrf( name ), Vxlan::VniExtOrNone( vni ) );
   }
   void vniDel( std::string const & name, std::string const & tunnel = "Vxlan1" ) {
      vtiStatusDir->vtiStatus( intf( tunnel ) )->vrfToVniMapDel( vrf( name ) );
   }

   // --- The ingress group
   Quelm::Ptr< Chip::SoftTcamEntryManager > ingress() const {
      return board.entryManager( Vornal::kIfpLocalBiasGroup );
   }
   // Others take or give back entries, until there is room for `count` more on the unit.
   void roomIs( U32 count, U16 unit = 0 ) {
      ingress()->foreignEntriesIs( unit, kCapacity - ingress()->used( unit ) - count );
   }
   U32 room( U16 unit = 0 ) const {
      return kCapacity - ingress()->used( unit ) - ingress()->foreignEntries( unit );
   }

   // --- Time
   // Lets what is due happen; how many wake-ups that were.
   U32 wakeUps() {
      U32 count = 0;
      while ( activity.clock()->fireOne() ) {
         ++count;
      }
      return count;
   }

   // --- What is seen
   // The VNIs whose rules are in the hardware of the unit.
   Vnis vnisOnChip( U16 unit = 0 ) const {
      Vnis vnis;
      for ( Chip::Rule const & rule : Chip::rulesOf( board.units() ) ) {
         auto const & match = rule.content[ Chip::Qualifier::VxlanNetworkId ];
         if ( rule.key.unit == unit && rule.isWritten && match ) {
            EXPECT_TRUE( vnis.insert( match->data ).second ) << "two rules for VNI " << match->data;
         }
      }
      return vnis;
   }
   static Vnis vnisRecorded( Machine const & sm ) {
      Vnis vnis;
      for ( auto iter = sm->vniToTcamEntryIdIter(); iter; ++iter ) {
         vnis.insert( iter.key() );
      }
      return vnis;
   }
   static VniOfVrf queued( Machine const & sm ) {
      VniOfVrf list;
      for ( auto iter = sm->unprogrammedTcamRulesListIter(); iter; ++iter ) {
         list[ iter.key().stringValue() ] = iter.value();
      }
      return list;
   }
   // How many entries have been asked for.
   std::ptrdiff_t requests() const {
      return std::count_if( calls.begin(), calls.end(), []( Chip::HardwareCall const & call ) {
         return call.operation == "getEntry";
      } );
   }
};

// Lets one field call fail while it lives.
class FieldCallFault {
 public:
   explicit FieldCallFault( Chip::Fault fault )
         : next_( Shim::sdk_ ), failing_( *next_, std::move( fault ) ) {
      Shim::sdk_ = &failing_;
   }
   FieldCallFault( FieldCallFault const & ) = delete;
   FieldCallFault & operator=( FieldCallFault const & ) = delete;
   ~FieldCallFault() { Shim::sdk_ = next_; }

 private:
   Shim::Sdk * next_;
   Chip::FailingSdk failing_;
};

// As the traces of an operation name it.
inline std::string const handleVrfToVniMapSignature =
   "void Vornal::EvpnMultihomingLocalBiasSm::NestedSm_VtiStatus::handleVrfToVniMap(L3::VrfName, "
   "U32, U32)";

inline std::string const vniIsTaken = "!evpnMultihomingLocalBiasSm()->vniToTcamEntryIdHas( newV )";
// The stop over a VNI that has an entry already.
inline std::string const stopsAtTakenVni =
   stopsAt( "NestedSm_VtiStatus::handleVrfToVniMap", vniIsTaken );

}  // namespace Support
