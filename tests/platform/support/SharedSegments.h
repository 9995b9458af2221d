// The segment status of a switch and the directory of the segments shared with each remote VTEP.
#pragma once

#include <vector>

#include <Oxa/OxaEvpnTepSegmentSm.h>

#include "Derived.h"

namespace Support {

using SegmentsDerived =
   Derived< Oxa::OxaEvpnTepSegmentSm, Oxa::EvpnTepSegmentDir, Oxa::EvpnTepSegment >;

class SharedSegments : public SegmentsDerived {
 public:
   using Sm = Oxa::OxaEvpnTepSegmentSm;
   using Directory = Oxa::EvpnTepSegmentDir;

   SharedSegments()
         : SegmentsDerived( Oxa::evpnTepSegmentDirFactory( "dir" ), Directory::tepSegmentAttr(),
                            []( Oxa::EvpnTepSegment const & tep ) {
                               return keysOf( tep.segmentSetIter() );
                            } ) {}

   static Pelk::IntfId intf( std::string const & name ) { return Pelk::IntfId::fromString( name ); }
   static Pelk::IpGenAddr ip( std::string const & address ) {
      return Pelk::IpGenAddr::fromString( address );
   }

   void share( std::string const & name, std::string const & tep ) {
      status->segmentStatusIs( intf( name ) )->remoteTepIs( ip( tep ) );
   }
   void unshare( std::string const & name, std::string const & tep ) {
      status->segmentStatusIs( intf( name ) )->remoteTepDel( ip( tep ) );
   }
   // A segment, or another object for it, that comes with its VTEPs.
   void segmentIs( std::string const & name, std::vector< std::string > const & teps ) {
      auto const segment = Quelm::make< Evpn::EthernetSegmentStatus >( intf( name ) );
      for ( auto const & tep : teps ) {
         segment->remoteTepIs( ip( tep ) );
      }
      status->segmentStatusIs( segment );
   }
   Quelm::Ptr< Evpn::EthernetSegmentStatus > segmentDel( std::string const & name ) {
      return status->segmentStatusDel( intf( name ) );
   }

   Quelm::Ptr< Sm > smNew() override {
      return Sm::OxaEvpnTepSegmentSmIs( status, directory, nullptr, nullptr );
   }
   Table held() const override {
      Table table;
      for ( auto tep = directory->tepSegmentIter(); tep; ++tep ) {
         auto & segments = table[ tep.key().stringValue() ];
         for ( auto iter = tep.value()->segmentSetIter(); iter; ++iter ) {
            segments.insert( iter.key().stringValue() );
         }
      }
      return table;
   }

   // --- For the tests of all derivations
   std::vector< Quelm::Ptr< Sm > > smsWithoutInputs() {
      return { Sm::OxaEvpnTepSegmentSmIs( nullptr, directory, nullptr, nullptr ),
               Sm::OxaEvpnTepSegmentSmIs( status, nullptr, nullptr, nullptr ),
               Sm::OxaEvpnTepSegmentSmIs( nullptr, nullptr, nullptr, nullptr ) };
   }
   void publishFirst() {
      segmentIs( "Ethernet1", { "10.0.0.2" } );
      share( "Ethernet2", "10.0.0.2" );
      share( "Ethernet2", "10.0.0.4" );
   }
   static std::string firstState() { return "10.0.0.2{Ethernet1 Ethernet2}10.0.0.4{Ethernet2}"; }
   void publishSecond() {
      unshare( "Ethernet1", "10.0.0.2" );
      segmentDel( "Ethernet2" );
      share( "Port-Channel7", "10.0.0.3" );
   }
   static std::string secondState() { return "10.0.0.3{Port-Channel7}"; }
   void publishThird() { unshare( "Port-Channel7", "10.0.0.3" ); }
   static std::string thirdState() { return ""; }
   // The first state when a reader ends the derivation with the first change.
   static std::string cutShortState() { return "10.0.0.2{Ethernet1 Ethernet2}"; }
   void clearDirectory() { directory->tepSegmentDelAll(); }
   // The subscribers of everything that is published.
   std::size_t subscribers() const {
      std::size_t count = status->publisher().subscribers();
      for ( auto iter = status->segmentStatusIter(); iter; ++iter ) {
         count += iter.value()->publisher().subscribers();
      }
      return count;
   }
   // One of any edits.
   void edit( int kind, int first, int second ) {
      std::string const name = "Ethernet" + std::to_string( first );
      std::string const tep = "10.0.0." + std::to_string( second );
      switch ( kind ) {
      case 0: segmentDel( name ); break;
      case 1: segmentIs( name, { tep, "2001:db8::3" } ); break;
      case 2:
      case 3: unshare( name, tep ); break;
      default: share( name, tep ); break;
      }
   }
   // The directory that the segment status asks for.
   Table computed() const {
      Table table;
      for ( auto segment = status->segmentStatusIter(); segment; ++segment ) {
         for ( auto iter = segment.value()->remoteTepIter(); iter; ++iter ) {
            table[ iter.key().stringValue() ].insert( segment.key().stringValue() );
         }
      }
      return table;
   }

   Quelm::Ptr< Evpn::EvpnStatus > status = Quelm::make< Evpn::EvpnStatus >( "status" );
};

}  // namespace Support
