// Whatever is written to a group, the fast lookup and the obvious one find the same winner for each
// frame. For libFuzzer; fuzz/README.md has the command.
//
// The input: the kind of group, then steps: an entry comes, is qualified, gets a priority, is
// written or goes, or a frame is looked up.
#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include <FieldProcessor/Group.h>
#include <Pieces.h>
#include <Property.h>

namespace {

using Fuzz::mustHold;
using Fuzz::Pieces;

constexpr U32 kMostEntries = 48;

// Few values, so that entries and frames meet.
U32 valueFor( Pieces & pieces, Chip::Qualifier qualifier ) {
   auto const value = static_cast< U16 >( pieces.below( 5 ) );
   return qualifier == Chip::Qualifier::SrcVxlanGport ? Chip::vxlanGportOf( value ) : value;
}
U32 mask( Pieces & pieces ) {
   std::array< U32, 6 > const masks{ 0xffffffff, 0xff, 1, 0, 0xfffffffe, 6 };
   return pieces.oneOf( masks );
}

Chip::IngressFields ingressFrame( Pieces & pieces ) {
   Chip::IngressFields frame;
   frame.srcVxlanGport = valueFor( pieces, Chip::Qualifier::SrcVxlanGport );
   frame.packetRes = pieces.below( 5 );
   frame.tunnelTerminated = pieces.yesOrNo();
   frame.vxlanNetworkId = pieces.below( 5 );
   return frame;
}
Chip::EgressFields egressFrame( Pieces & pieces ) {
   Chip::EgressFields frame;
   frame.dstModId = pieces.below( 5 );
   frame.dstPort = pieces.below( 5 );
   frame.ipType = static_cast< bcm_field_IpType_t >( pieces.below( 4 ) );
   frame.ingressClass = pieces.below( 5 );
   return frame;
}

// Two groups that have the same entries, each with a lookup of its own.
class BothLookups {
 public:
   explicit BothLookups( Chip::GroupKind kind ) : kind_( kind ) {}

   void step( Pieces & pieces ) {
      switch ( pieces.below( 8 ) ) {
      case 0:
      case 1: entryNew( pieces ); break;
      case 2: qualify( pieces ); break;
      case 3: prioritise( pieces ); break;
      case 4: onBoth( pieces, []( Chip::Group & group, U32 id ) { group.install( id ); } ); break;
      case 5: onBoth( pieces, []( Chip::Group & group, U32 id ) { group.release( id ); } ); break;
      default: lookUp( pieces ); break;
      }
   }

 private:
   void entryNew( Pieces & pieces ) {
      U32 const id = obvious_.entryNew( "rule" );
      mustHold( fast_.entryNew( "rule" ) == id, "both give out the same ids" );
      last_ = id != 0 ? id : last_;
      qualify( pieces );
      prioritise( pieces );
      obvious_.install( last_ );
      fast_.install( last_ );
   }
   void qualify( Pieces & pieces ) {
      Chip::Qualifier const qualifier = pieces.oneOf( Chip::kQualifiers );
      Chip::Match const match{ valueFor( pieces, qualifier ), mask( pieces ), pieces.below( 5 ),
                               mask( pieces ) };
      onBoth( pieces, [ & ]( Chip::Group & group, U32 id ) {
         if ( Chip::Entry * const entry = group.entry( id ) ) {
            entry->qualify( qualifier, match );
         }
      } );
   }
   void prioritise( Pieces & pieces ) {
      U32 const priority = pieces.below( 4 );
      onBoth( pieces, [ & ]( Chip::Group & group, U32 id ) {
         Chip::Entry * const entry = group.entry( id );
         if ( entry && priority != 0 ) {
            entry->priorityIs( priority );
         }
      } );
   }
   void lookUp( Pieces & pieces ) const {
      if ( kind_ == Chip::GroupKind::Ingress ) {
         auto const frame = ingressFrame( pieces );
         mustAgree( obvious_.lookup( frame ), fast_.lookup( frame ) );
      } else {
         auto const frame = egressFrame( pieces );
         mustAgree( obvious_.lookup( frame ), fast_.lookup( frame ) );
      }
   }
   static void mustAgree( Chip::Entry const * obvious, Chip::Entry const * fast ) {
      mustHold( ( obvious ? obvious->id() : 0 ) == ( fast ? fast->id() : 0 ),
                "both find the same winner" );
   }

   // The entry that came last, or any.
   template< typename Work > void onBoth( Pieces & pieces, Work work ) {
      U32 const id = pieces.yesOrNo() || last_ == 0 ? last_ : 1 + pieces.byte() % last_;
      work( obvious_, id );
      work( fast_, id );
   }

   Chip::GroupKind kind_;
   Chip::EntryIds idsOfObvious_;
   Chip::EntryIds idsOfFast_;
   Chip::Group obvious_{ 0, kind_, kMostEntries, idsOfObvious_, Chip::LookupEngine::Linear };
   Chip::Group fast_{ 0, kind_, kMostEntries, idsOfFast_, Chip::LookupEngine::TupleSpace };
   U32 last_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   Pieces pieces( data, size );
   BothLookups both( pieces.yesOrNo() ? Chip::GroupKind::Egress : Chip::GroupKind::Ingress );
   while ( !pieces.isOver() ) {
      both.step( pieces );
   }
   return 0;
}
