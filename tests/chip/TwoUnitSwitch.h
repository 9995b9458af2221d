// leaf1: a switch of two units with little room, and the values that its tests share.
#pragma once

#include <algorithm>
#include <vector>

#include <Board/Board.h>
#include <FieldProcessor/Gport.h>
#include <SoftSdk/PortBitmap.h>

#include "CallText.h"

namespace ChipTest {

constexpr U8 kIfp = Vornal::kIfpLocalBiasGroup;
constexpr U8 kEfp = Vornal::kEfpLocalBiasGroup;

constexpr U32 kExact = BCM_FIELD_EXACT_MATCH_MASK;
constexpr U32 kVtep2 = Chip::vxlanGportOf( 2 );  // the gports of two remote VTEPs
constexpr U32 kVtep3 = Chip::vxlanGportOf( 3 );

// Units 0 and 1, with module ids 0 and 4 and room for `capacity` entries in each group.
inline Chip::BoardConfig twoUnits( U32 capacity,
                                   Chip::LookupEngine lookup = Chip::LookupEngine::TupleSpace ) {
   return { { { 0, 0, { { kIfp, capacity }, { kEfp, capacity } } },
              { 1, 4, { { kIfp, capacity }, { kEfp, capacity } } } },
            lookup };
}

inline _shr_pbmp pbmpOfPorts( std::vector< U32 > const & ports ) {
   Brum::PerUnitBitmap bitmap;
   std::for_each( ports.begin(), ports.end(), [ & ]( U32 port ) { bitmap.bitSet( port ); } );
   return Chip::pbmpOf( bitmap );
}

class TwoUnitSwitch {
 public:
   explicit TwoUnitSwitch( U32 capacity = 8, Chip::CallObserver * observer = nullptr )
         : TwoUnitSwitch( twoUnits( capacity ), observer ) {}
   explicit TwoUnitSwitch( Chip::BoardConfig const & config,
                           Chip::CallObserver * observer = nullptr )
         : board( config, observer ),
           sdk( board.sdk() ),
           ifp( board.entryManager( kIfp ) ),
           efp( board.entryManager( kEfp ) ) {}

   // An installed ingress rule for everything from that VTEP.
   U32 fromVtep( U32 unit, U32 gport ) {
      U32 const id = ifp->getEntry( unit, "from vtep", {} );
      sdk.bcm_field_qualify_SrcVxlanGport( unit, id, gport );
      ifp->installEntry( unit, id );
      return id;
   }

   // The id of the rule that wins; 0 when none matches.
   U32 winner( U32 unit, Chip::IngressFields const & frame ) {
      return idOf( board.units().group( unit, kIfp )->lookup( frame ) );
   }
   U32 winner( U32 unit, Chip::EgressFields const & frame ) {
      return idOf( board.units().group( unit, kEfp )->lookup( frame ) );
   }

   Chip::Board board;
   Chip::SoftSdk & sdk;
   Quelm::Ptr< Chip::SoftTcamEntryManager > ifp;
   Quelm::Ptr< Chip::SoftTcamEntryManager > efp;

 private:
   static U32 idOf( Chip::Entry const * entry ) { return entry ? entry->id() : 0; }
};

// Keeps what it is told, in order.
class Record : public Chip::CallObserver {
 public:
   void callMade( Chip::HardwareCall const & call ) override { calls.push_back( call ); }

   std::vector< std::string > texts() const {
      std::vector< std::string > lines;
      for ( Chip::HardwareCall const & call : calls ) {
         lines.push_back( textOf( call ) );
      }
      return lines;
   }

   std::vector< Chip::HardwareCall > calls;
};

}  // namespace ChipTest
