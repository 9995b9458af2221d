#include <support/CallList.h>

#include <algorithm>
#include <array>

#include <Quelm/Error.h>
#include <Replay/CallReplay.h>
#include <Shim/FieldCall.h>
#include <SoftSdk/PortBitmap.h>

namespace Bench {

void CallList::callMade( Chip::HardwareCall const & call ) {
   if ( auto const made = Chip::fieldCallOf( call ) ) {
      fieldCallMade( call, *made );
   } else {
      managerCallMade( call );
   }
}

void CallList::fieldCallMade( Chip::HardwareCall const & call, Shim::Call const & made ) {
   made_.push_back( { Kind::Field, 0, made, texts_.insert( call.callText ).first->c_str() } );
}

void CallList::managerCallMade( Chip::HardwareCall const & call ) {
   constexpr std::array< std::pair< std::string_view, Kind >, 7 > kinds{ {
      { "getEntry", Kind::Get },
      { "installEntry", Kind::Install },
      { "reinstallEntry", Kind::Reinstall },
      { "releaseEntry", Kind::Release },
      { "setPriorityForEntry", Kind::Priority },
      { "addEgressMaskAction", Kind::AddMask },
      { "updateEgressMaskAction", Kind::UpdateMask },
   } };
   auto const * const row = std::find_if( kinds.begin(), kinds.end(), [ & ]( auto const & one ) {
      return one.first == call.operation;
   } );
   if ( row == kinds.end() ) {
      throw Quelm::Error( "the call " + call.operation + " cannot be made again" );
   }
   Kind const kind = row->second;
   made_.push_back( { kind,
                      static_cast< U16 >( Chip::valueOf< U32 >( call, "group" ) ),
                      { {}, call.unit, call.entry },
                      nullptr } );
   if ( kind == Kind::Get ) {
      names_.push_back( Chip::valueOf< std::string >( call, "name" ) );
   } else if ( kind == Kind::Priority ) {
      priorities_.push_back( Chip::valueOf< U32 >( call, "priority" ) );
   } else if ( kind == Kind::AddMask || kind == Kind::UpdateMask ) {
      masks_.push_back( Chip::pbmpOf( Chip::valueOf< Brum::PerUnitBitmap >( call, "ports" ) ) );
   }
}

void CallList::makeOn( Chip::Board & board ) const {
   auto const ingress = board.entryManager( Vornal::kIfpLocalBiasGroup );
   auto const egress = board.entryManager( Vornal::kEfpLocalBiasGroup );
   auto name = names_.begin();
   auto priority = priorities_.begin();
   auto mask = masks_.begin();
   for ( Made const & made : made_ ) {
      if ( made.kind == Kind::Field ) {
         Shim::Call call = made.call;
         Shim::guardedFieldCall( QUELM_PLACE_AT( __LINE__ ), made.text,
                                 [ & ] { return Shim::sdk_->make( call ); } );
         continue;
      }
      Vornal::VornalUnboundedTcamEntryManager & manager =
         made.group == Vornal::kIfpLocalBiasGroup ? *ingress : *egress;
      auto const [ operation, unit, entry, values ] = made.call;
      switch ( made.kind ) {
      case Kind::Field: break;
      case Kind::Get:
         if ( manager.getEntry( unit, *name++, VornalTcam::RequestKey() ) != entry ) {
            throw Quelm::Error( "entry " + std::to_string( entry ) +
                                " has another id than at first" );
         }
         break;
      case Kind::Install: manager.installEntry( unit, entry ); break;
      case Kind::Reinstall: manager.reinstallEntry( unit, entry ); break;
      case Kind::Release: manager.releaseEntry( unit, entry ); break;
      case Kind::Priority: manager.setPriorityForEntry( unit, entry, *priority++ ); break;
      case Kind::AddMask: manager.addEgressMaskAction( unit, entry, *mask++ ); break;
      case Kind::UpdateMask: manager.updateEgressMaskAction( unit, entry, *mask++ ); break;
      }
   }
}

}  // namespace Bench
