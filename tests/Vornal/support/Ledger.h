// What a machine does to the chip and what it writes down, in one list in the order in which it
// happens:
//
//    unit 0 entry 3: bcm_field_qualify_SrcVxlanGport( gport 0x56000002 )
//    unit 0: entryId[10.0.0.2] = 3
//    unit 0: entryId[10.0.0.2] gone
//    sm: l2UcastRuleInstalled[0] = 1
//    log %VORNAL-3-MULTIHOMING_TCAM_RESOURCE_FULL
//
// The nested reactors are left out. A ledger is opened on a machine that runs, and ends before it.
#pragma once

#include <string>
#include <variant>

#include <Log/Log.h>
#include <StateDatabase/ChangeWatch.h>

#include "LocalBiasSwitch.h"

namespace Support {

class Ledger final : private Story::Observer {
 public:
   Ledger( LocalBiasSwitch & leaf, Machine const & sm ) : leaf_( leaf ), watch_( "sm", sm, *this ) {
      leaf.afterCall = [ this ] {
         Chip::HardwareCall call = leaf_.calls.back();
         call.returnCode.reset();
         lines_.push_back( ChipTest::textOf( call ) );
      };
      Log::sinkIs( [ this ]( Log::Message const & message ) {
         lines_.push_back( "log " + message.line.substr( 0, message.line.find( ':' ) ) );
      } );
   }
   Ledger( Ledger const & ) = delete;
   Ledger & operator=( Ledger const & ) = delete;
   ~Ledger() override {
      leaf_.afterCall = [] {};
      Log::sinkIs( {} );
   }

   // What has happened since this was last asked.
   Lines lines() { return std::exchange( lines_, {} ); }

 private:
   void onEvent( Story::Event const & event ) override {
      auto const & change = std::get< Story::PublishedChange >( event );
      if ( change.path == "sm" &&
           ( change.attribute == "oxaEvpnTepSegment" || change.attribute == "vtiStatus" ||
             change.attribute == "lagPhyIntfConfig" ) ) {
         return;
      }
      // "sm/tepIpToEntry[0]" is unit 0's record, and a list in it follows after another '/'.
      std::string where = change.path;
      std::string const record = "sm/tepIpToEntry[";
      if ( where.starts_with( record ) ) {
         where = "unit " + where.substr( record.size() );
         where.erase( where.find( ']' ), 1 );
      } else if ( where != "sm" ) {
         return;
      }
      lines_.push_back( where + ": " + change.attribute +
                        ( change.key.empty() ? "" : "[" + change.key + "]" ) +
                        ( change.to ? " = " + *change.to : " gone" ) );
   }

   LocalBiasSwitch & leaf_;
   Lines lines_;
   StateDatabase::ChangeWatch watch_;
};

}  // namespace Support
