// Any sequence of operations leaves the chip as a plain model of it says: same ids, same results,
// same room, same flags, and for every frame the same winner.
//
// The model is as simple as can be: lists of entries, and a lookup that compares a frame with
// one entry after the other.
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <optional>
#include <ostream>
#include <vector>

#include <rapidcheck/gtest.h>

#include "TwoUnitSwitch.h"

namespace ModelTest {

using namespace ChipTest;
using Chip::codeOf;
using Chip::EgressFields;
using Chip::IngressFields;
using Chip::ResultCode;

constexpr U32 kUnits = 2;
constexpr U32 kCapacity = 4;

// --- The model

enum Field { Gport, PacketRes, TunnelTerminated, Vni, ModId, Port, IpType, IngressClass };
using Frame = std::map< Field, U32 >;

struct Ternary {
   U32 data;
   U32 mask;
};

struct Content {
   std::map< Field, Ternary > fields;
   std::optional< U32 > priority;

   bool matches( Frame const & frame ) const {
      return std::all_of( fields.begin(), fields.end(), [ & ]( auto const & one ) {
         auto const & [ field, ternary ] = one;
         return ( frame.at( field ) & ternary.mask ) == ( ternary.data & ternary.mask );
      } );
   }
};

struct Entry {
   U32 id;
   Content staged;
   std::optional< Content > written;
};

bool standsAbove( Entry const & a, Entry const & b ) {
   if ( a.written->priority == b.written->priority ) {
      return a.id < b.id;
   }
   if ( !a.written->priority || !b.written->priority ) {
      return !a.written->priority;
   }
   return *a.written->priority > *b.written->priority;
}

struct Group {
   std::vector< Entry > entries;
   U32 foreign = 0;
   bool isExhausted = false;

   Entry * find( U32 id ) {
      auto const found = std::find_if( entries.begin(), entries.end(),
                                       [ & ]( Entry const & entry ) { return entry.id == id; } );
      return found == entries.end() ? nullptr : &*found;
   }
   bool hasRoom() const { return entries.size() + foreign < kCapacity; }
   U32 winner( Frame const & frame ) const {
      Entry const * best = nullptr;
      for ( Entry const & entry : entries ) {
         if ( entry.written && entry.written->matches( frame ) &&
              ( !best || standsAbove( entry, *best ) ) ) {
            best = &entry;
         }
      }
      return best ? best->id : 0;
   }
};

struct Unit {
   U32 lastId = 0;
   std::array< Group, 2 > groups;  // ingress, egress
};

// --- The steps

enum class Operation { Get, Qualify, Priority, Install, Reinstall, Release, Foreign };

struct Step {
   Operation operation;
   U32 unit;
   U32 group;  // 0 ingress, 1 egress
   U32 entry;  // an id, not always a known one
   U32 field;  // which qualifier
   U32 data;   // a priority or number of entries in other operations
   U32 mask;
};

void showValue( Step const & step, std::ostream & out ) {
   static constexpr std::array names{ "get",       "qualify", "priority", "install",
                                      "reinstall", "release", "foreign" };
   out << names.at( static_cast< std::size_t >( step.operation ) ) << " unit " << step.unit
       << " group " << step.group << " entry " << step.entry << " field " << step.field << " data "
       << step.data << " mask " << step.mask;
}

rc::Gen< Step > anyStep() {
   auto const operation = rc::gen::weightedElement< Operation >( {
      { 4, Operation::Get },
      { 6, Operation::Qualify },
      { 2, Operation::Priority },
      { 4, Operation::Install },
      { 2, Operation::Reinstall },
      { 2, Operation::Release },
      { 1, Operation::Foreign },
   } );
   return rc::gen::build< Step >( rc::gen::set( &Step::operation, operation ),
                                  rc::gen::set( &Step::unit, rc::gen::inRange( 0U, kUnits ) ),
                                  rc::gen::set( &Step::group, rc::gen::inRange( 0U, 2U ) ),
                                  rc::gen::set( &Step::entry, rc::gen::inRange( 0U, 8U ) ),
                                  rc::gen::set( &Step::field, rc::gen::inRange( 0U, 4U ) ),
                                  rc::gen::set( &Step::data, rc::gen::inRange( 0U, 4U ) ),
                                  rc::gen::set( &Step::mask,
                                                rc::gen::element( 0U, 1U, 3U, kExact ) ) );
}

// --- Both side by side

class SideBySide {
 public:
   explicit SideBySide( Chip::LookupEngine lookup ) : leaf1_( twoUnits( kCapacity, lookup ) ) {}

   void run( Step const & step ) {
      switch ( step.operation ) {
      case Operation::Get: get( step ); break;
      case Operation::Qualify: qualify( step ); break;
      case Operation::Priority: prioritise( step ); break;
      case Operation::Install: install( step ); break;
      case Operation::Reinstall: reinstall( step ); break;
      case Operation::Release: release( step ); break;
      case Operation::Foreign: foreign( step ); break;
      }
   }

   void compare() {
      for ( U32 unit = 0; unit < kUnits; ++unit ) {
         compareRoom( unit );
         compareIngress( unit );
         compareEgress( unit );
      }
   }

 private:
   Chip::SoftTcamEntryManager & managerOf( Step const & step ) const {
      return step.group == 0 ? *leaf1_.ifp : *leaf1_.efp;
   }
   Group & groupOf( Step const & step ) { return units_[ step.unit ].groups[ step.group ]; }

   void get( Step const & step ) {
      Group & group = groupOf( step );
      U32 const id = managerOf( step ).getEntry( step.unit, "rule", {} );
      if ( group.hasRoom() ) {
         U32 const expected = ++units_[ step.unit ].lastId;
         RC_ASSERT( id == expected );
         group.entries.push_back( { id, {}, {} } );
      } else {
         RC_ASSERT( id == 0U );
         group.isExhausted = true;
      }
   }

   void qualify( Step const & step ) {
      Entry * const ingress = units_[ step.unit ].groups[ 0 ].find( step.entry );
      Entry * const egress = units_[ step.unit ].groups[ 1 ].find( step.entry );
      std::map< Field, Ternary > fields;
      S32 const rc =
         step.group == 0 ? qualifyIngress( step, fields ) : qualifyEgress( step, fields );
      Entry * const meant = step.group == 0 ? ingress : egress;
      Entry * const other = step.group == 0 ? egress : ingress;
      RC_ASSERT( rc == codeOf( meant   ? ResultCode::None
                               : other ? ResultCode::Unsupported
                                       : ResultCode::UnknownEntry ) );
      if ( meant ) {
         for ( auto const & [ field, ternary ] : fields ) {
            meant->staged.fields[ field ] = ternary;
         }
      }
   }

   S32 qualifyIngress( Step const & step, std::map< Field, Ternary > & fields ) {
      Chip::SoftSdk & sdk = leaf1_.sdk;
      auto const bit = static_cast< U8 >( step.data & 1 );
      auto const bitMask = static_cast< U8 >( step.mask & 1 );
      U32 const gport = Chip::vxlanGportOf( static_cast< U16 >( step.data ) );
      switch ( step.field ) {
      case 0:
         fields[ Gport ] = { gport, kExact };
         return sdk.bcm_field_qualify_SrcVxlanGport( step.unit, step.entry, gport );
      case 1:
         fields[ PacketRes ] = { step.data, step.mask };
         return sdk.bcm_field_qualify_PacketRes( step.unit, step.entry, step.data, step.mask );
      case 2:
         fields[ TunnelTerminated ] = { bit, bitMask };
         return sdk.bcm_field_qualify_TunnelTerminated( step.unit, step.entry, bit, bitMask );
      default:
         fields[ Vni ] = { step.data, step.mask };
         return sdk.bcm_field_qualify_VxlanNetworkId( step.unit, step.entry, step.data, step.mask );
      }
   }

   S32 qualifyEgress( Step const & step, std::map< Field, Ternary > & fields ) {
      Chip::SoftSdk & sdk = leaf1_.sdk;
      auto const ipType = static_cast< bcm_field_IpType_t >( step.data );
      switch ( step.field ) {
      case 0:
         fields[ ModId ] = { step.data & 1, step.mask };
         fields[ Port ] = { step.data, kExact };
         return sdk.bcm_field_qualify_DstPort( step.unit, step.entry, step.data & 1, step.mask,
                                               step.data, kExact );
      case 1:
         fields[ IpType ] = { step.data, ipType == bcmFieldIpTypeAny ? 0 : kExact };
         return sdk.bcm_field_qualify_IpType( step.unit, step.entry, ipType );
      default:
         fields[ IngressClass ] = { step.data, step.mask };
         return sdk.bcm_field_qualify_IngressClassField( step.unit, step.entry, step.data,
                                                         step.mask );
      }
   }

   void prioritise( Step const & step ) {
      managerOf( step ).setPriorityForEntry( step.unit, step.entry, step.data );
      if ( Entry * const entry = groupOf( step ).find( step.entry ) ) {
         entry->staged.priority = step.data;
      }
   }

   void install( Step const & step ) {
      S32 const rc = managerOf( step ).installEntry( step.unit, step.entry );
      Entry * const entry = groupOf( step ).find( step.entry );
      RC_ASSERT( rc == codeOf( entry ? ResultCode::None : ResultCode::UnknownEntry ) );
      if ( entry ) {
         entry->written = entry->staged;
      }
   }

   void reinstall( Step const & step ) {
      S32 const rc = managerOf( step ).reinstallEntry( step.unit, step.entry );
      Entry * const entry = groupOf( step ).find( step.entry );
      RC_ASSERT( rc == codeOf( !entry            ? ResultCode::UnknownEntry
                               : !entry->written ? ResultCode::NotInstalled
                                                 : ResultCode::None ) );
      if ( entry && entry->written ) {
         entry->written = entry->staged;
      }
   }

   void release( Step const & step ) {
      managerOf( step ).releaseEntry( step.unit, step.entry );
      Group & group = groupOf( step );
      if ( std::erase_if( group.entries,
                          [ & ]( Entry const & entry ) { return entry.id == step.entry; } ) != 0 ) {
         group.isExhausted = false;
      }
   }

   void foreign( Step const & step ) {
      U32 const held = managerOf( step ).foreignEntriesIs( step.unit, step.data );
      Group & group = groupOf( step );
      auto const most = kCapacity - static_cast< U32 >( group.entries.size() );
      group.foreign = std::min( step.data, most );
      RC_ASSERT( held == group.foreign );
      group.isExhausted = group.isExhausted && !group.hasRoom();
   }

   void compareRoom( U32 unit ) {
      auto const key = static_cast< U16 >( unit );
      Group const & ingress = units_[ unit ].groups[ 0 ];
      Group const & egress = units_[ unit ].groups[ 1 ];
      RC_ASSERT( leaf1_.ifp->used( unit ) == ingress.entries.size() );
      RC_ASSERT( leaf1_.efp->used( unit ) == egress.entries.size() );
      RC_ASSERT( leaf1_.ifp->exhausted( key ) == ingress.isExhausted );
      RC_ASSERT( leaf1_.efp->exhausted( key ) == egress.isExhausted );
   }

   // Every frame of a small world.
   void compareIngress( U32 unit ) {
      for ( U32 n = 0; n < 128; ++n ) {
         U32 const gport = Chip::vxlanGportOf( static_cast< U16 >( n & 3 ) );
         U32 const packetRes = n >> 2 & 3;
         U32 const vni = n >> 4 & 3;
         U32 const terminated = n >> 6;
         U32 const expected = units_[ unit ].groups[ 0 ].winner( {
            { Gport, gport },
            { PacketRes, packetRes },
            { TunnelTerminated, terminated },
            { Vni, vni },
         } );
         RC_ASSERT( leaf1_.winner( unit, IngressFields{ gport, packetRes, terminated == 1,
                                                        vni } ) == expected );
      }
   }

   void compareEgress( U32 unit ) {
      for ( U32 n = 0; n < 128; ++n ) {
         U32 const port = n & 3;
         U32 const ipType = n >> 2 & 3;
         U32 const ingressClass = n >> 4 & 3;
         U32 const modId = n >> 6;
         U32 const expected = units_[ unit ].groups[ 1 ].winner( {
            { ModId, modId },
            { Port, port },
            { IpType, ipType },
            { IngressClass, ingressClass },
         } );
         EgressFields const frame{ modId, port, static_cast< bcm_field_IpType_t >( ipType ),
                                   ingressClass };
         RC_ASSERT( leaf1_.winner( unit, frame ) == expected );
      }
   }

   TwoUnitSwitch leaf1_;
   std::array< Unit, kUnits > units_;
};

void compareAfterEachStep( Chip::LookupEngine lookup ) {
   auto const steps = *rc::gen::scale( 2, rc::gen::container< std::vector< Step > >( anyStep() ) );
   SideBySide both( lookup );
   for ( Step const & step : steps ) {
      both.run( step );
      both.compare();
   }
}

RC_GTEST_PROP( Model, IsWhatAnySequenceOfOperationsLeadsTo, () ) {
   compareAfterEachStep( Chip::LookupEngine::TupleSpace );
}

RC_GTEST_PROP( Model, IsWhatAnySequenceLeadsToWithTheObviousLookup, () ) {
   compareAfterEachStep( Chip::LookupEngine::Linear );
}

}  // namespace ModelTest
