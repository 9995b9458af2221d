// leaf1 with the class-id machine: a LocalBiasSwitch with what tests of that variant say often.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <Decorators/FailingSdk.h>

#include "LocalBiasSwitch.h"

namespace Support {

inline constexpr auto kIngress = Vornal::kIfpLocalBiasGroup;
inline constexpr auto kEgress = Vornal::kEfpLocalBiasGroup;

using ClassIdSm = Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm;

// A pattern that matches this text and nothing else.
inline std::string exactly( std::string const & text ) {
   std::string pattern;
   for ( char const c : text ) {
      pattern += std::string( "\\^$.|?*+()[]{}" ).find( c ) == std::string::npos
                    ? std::string( 1, c )
                    : std::string( "\\" ) + c;
   }
   return pattern;
}

inline std::string const classIdSmName = "Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm::";

// What a stop at this assertion in this operation of the class-id machine prints.
inline std::string stoppedAt( std::string const & file, std::string const & operation,
                              std::string const & expression,
                              std::string const & line = "[0-9]+" ) {
   return exactly( file + ".cpp:" ) + line + ": [a-z ]*" +
          exactly( classIdSmName + operation + "(" ) + "[^)]*" +
          exactly( "): Assertion '" + expression + "' failed.\n" );
}
// What a failed field call of that operation prints: its own line, and the stop at the same one.
// (The second group holds the line, whether or not the pattern is put into a group as a whole.)
inline std::string failedAt( std::string const & file, std::string const & operation,
                             std::string const & call, S32 code ) {
   return exactly( file + ".cpp:" ) + "(([0-9]+))" +
          exactly( " " + call + " API ERROR:" + Shim::sdk_->errorText( code ) + " (" +
                   std::to_string( code ) + ")\n" ) +
          stoppedAt( file, operation, "0", "\\2" );
}

inline Lines operator+( Lines lines, Lines const & more ) {
   lines.insert( lines.end(), more.begin(), more.end() );
   return lines;
}

// The hardware calls of which a VTEP's ingress rule is made.
inline Lines ingressRule( U32 unit, U32 entry, std::string const & address,
                          std::string const & gport, U16 classId ) {
   std::string const at = "unit " + std::to_string( unit ) + " entry " + std::to_string( entry );
   return { at + ": " + ingressRequest( vtepRuleName( address ) ),
            at + ": bcm_field_qualify_SrcVxlanGport( gport " + gport + " )",
            at + ": setPriorityForEntry( group 157, priority 1 )",
            at + ": bcm_field_action_add( action EgressClassSelect, param0 1, param1 0 )",
            at + ": bcm_field_action_add( action NewClassId, param0 " + std::to_string( classId ) +
               ", param1 0 )",
            at + ": installEntry( group 157 )" };
}
// The same for the egress rule of one port, which is `interface`'s.
inline Lines egressRule( U32 unit, U32 entry, std::string const & address,
                         std::string const & interface, U16 logicalPort, U16 classId ) {
   std::string const at = "unit " + std::to_string( unit ) + " entry " + std::to_string( entry );
   return { at + ": " + egressRequest( dropRuleName( address, interface ) ),
            at + ": bcm_field_qualify_DstPort( modId " + std::to_string( 40 + unit ) +
               ", modIdMask 0xffffffff, port " + std::to_string( logicalPort ) +
               ", portMask 0xffffffff )",
            at + ": bcm_field_qualify_IpType( ipType 0 )",
            at + ": bcm_field_qualify_IngressClassField( data " + std::to_string( classId ) +
               ", mask 0xffffffff )",
            at + ": bcm_field_action_add( action Drop, param0 0, param1 0 )",
            at + ": installEntry( group 45 )" };
}
inline Lines released( U32 unit, Vornal::TcamGroupAssignment group,
                       std::vector< U32 > const & entries ) {
   Lines lines;
   for ( U32 const entry : entries ) {
      lines.push_back( "unit " + std::to_string( unit ) + " entry " + std::to_string( entry ) +
                       ": releaseEntry( group " + std::to_string( group ) + " )" );
   }
   return lines;
}

class ClassIdLeaf : public LocalBiasSwitch {
 public:
   using LocalBiasSwitch::LocalBiasSwitch;

   // The machine comes up, and what it has done so far is forgotten.
   ClassIdSm & start() {
      machine_ = machineNew( Variant::I2EClassId );
      forget();
      return sm();
   }
   ClassIdSm & sm() { return static_cast< ClassIdSm & >( *machine_ ); }
   bool isStarted() const { return static_cast< bool >( machine_ ); }
   void stop() { machine_ = nullptr; }

   // A segment on this interface, shared with these VTEPs; the n-th has virtual port 2 + n.
   void share( std::string const & name, std::vector< std::string > const & vteps ) {
      U32 virtualPort = 2;
      for ( std::string const & address : vteps ) {
         vtepIs( address, virtualPort++ );
      }
      segmentIs( name, vteps );
   }
   void classIdDel( std::string const & address ) {
      classIdStatus->remoteESPeerVtepDel( ip( address ) );
   }

   // This field call fails from now on.
   void fail( Chip::Fault const & fault ) {
      failing_ = std::make_unique< Chip::FailingSdk >( *Shim::sdk_, fault );
      Shim::sdk_ = failing_.get();
   }

   // The VTEPs for which a class id is wanted.
   Lines requests() const {
      Lines found;
      for ( auto iter = classIdConfig->remoteESPeerVtepIter(); iter; ++iter ) {
         found.push_back( iter.key().stringValue() + ( iter.value() ? "" : " (false)" ) );
      }
      return found;
   }

   // Room that other users hold.
   void foreignIs( Vornal::TcamGroupAssignment group, U16 unit, U32 count ) {
      board.entryManager( group )->foreignEntriesIs( unit, count );
   }
   // Leaves room for `count` more entries.
   void roomIs( Vornal::TcamGroupAssignment group, U16 unit, U32 count ) {
      auto const manager = board.entryManager( group );
      foreignIs( group, unit, manager->capacity( unit ) - manager->used( unit ) - count );
   }
   U32 used( Vornal::TcamGroupAssignment group, U16 unit = 0 ) {
      return board.entryManager( group )->used( unit );
   }

   // What was done to the hardware since it was last asked for, a line each, without results.
   Lines hardware() {
      Lines lines;
      for ( Chip::HardwareCall call : calls ) {
         call.returnCode.reset();
         lines.push_back( ChipTest::textOf( call ) );
      }
      calls.clear();
      return lines;
   }

   // The VTEP's ingress entry on the unit, or 0.
   U32 ingressEntry( U32 unit, std::string const & address ) {
      auto const record = sm().tepIpToEntry( unit );
      return record ? record->entryId( ip( address ) ) : 0;
   }
   Quelm::Ptr< Vornal::ESPortAndEFPEntryIdList > egressList( U32 unit,
                                                             std::string const & address ) {
      auto const record = sm().tepIpToEntry( unit );
      return record ? record->esPortAndEFPEntryIdList( ip( address ) ) : nullptr;
   }
   // The ports of the unit's list that have an entry, in text.
   std::string egressPorts( U32 unit, std::string const & address ) {
      auto const list = egressList( unit, address );
      return list ? Quelm::textOf( list->esPortList() ) : "none";
   }
   // The entry's content in the hardware; the entry is there.
   Chip::EntryContent written( U32 unit, U32 entry ) {
      Chip::Entry const * const found = board.units().unit( unit )->entry( entry );
      return found && found->written() ? *found->written() : Chip::EntryContent{};
   }
   std::string nameOf( U32 unit, U32 entry ) {
      return board.units().unit( unit )->entry( entry )->name();
   }

   // Writes through the generic interface, by name and text.
   void write( Kiv::Entity & entity, std::string const & attribute, std::string const & key,
               std::string const & value ) {
      entity.typeData().find( attribute )->textIs( entity, key, value );
   }

 private:
   std::unique_ptr< Chip::FailingSdk > failing_;
   Machine machine_;
};

inline std::string const logFull =
   "%VORNAL-3-MULTIHOMING_TCAM_RESOURCE_FULL: TCAM resource for EVPN Multi-Homing exhausted";
inline std::string const logRecovered =
   "%VORNAL-5-MULTIHOMING_TCAM_RESOURCE_RECOVERED: TCAM resource for EVPN Multi-Homing recovered";

}  // namespace Support
