// leaf1: a switch (SwitchState.h) whose units have the module ids 40, 41, ..., watched by a test.
//
// A test says what other agents publish, in the words of a switch's configuration, builds the
// machine of one variant, and looks at what it traces, logs and does to the chip.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <Board/Board.h>
#include <Decorators/RecordingSdk.h>
#include <Kiv/Activity.h>
#include <Lag/LagPhyIntfMappingSm.h>
#include <Log/Log.h>
#include <Oxa/OxaEvpnTepSegmentSm.h>
#include <Trace/Trace.h>
#include <VornalEvpnSm/EgressMask/EvpnMultihomingLocalBiasWithEgressMaskSm.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>

#include "../../chip/CallText.h"
#include "RuleNames.h"
#include "SwitchState.h"

namespace Support {

using Lines = std::vector< std::string >;
using Machine = Quelm::Ptr< Vornal::EvpnMultihomingLocalBiasSm >;

enum class Variant { EgressMask, I2EClassId };

class LocalBiasSwitch : private Chip::CallObserver, public SwitchState {
 public:
   explicit LocalBiasSwitch( U16 units = 1, U32 capacity = 64 )
         : SwitchState( configOf( units, capacity ), this ), recorder_( board.sdk(), *this ) {
      Shim::sdk_ = &recorder_;
      Trace::sinkIs( [ this ]( Trace::Line const & line ) {
         traces.push_back( std::to_string( line.level ) + " " + std::string( line.text ) );
      } );
      Trace::levelsIs( "VornalEvpnSm", "0-9" );
      Log::sinkIs( [ this ]( Log::Message const & message ) { logs.push_back( message.line ); } );
   }
   LocalBiasSwitch( LocalBiasSwitch const & ) = delete;
   LocalBiasSwitch & operator=( LocalBiasSwitch const & ) = delete;
   ~LocalBiasSwitch() override {
      Trace::sinkIs( {} );
      Log::sinkIs( {} );
      Shim::sdk_ = nullptr;
   }

   static U16 modIdOf( U16 unit ) { return static_cast< U16 >( 40 + unit ); }
   static VornalTypes::VornalPort port( U16 unit, U16 logicalPort ) {
      return { unit, logicalPort, modIdOf( unit ) };
   }

   // Ethernet1, on port 5, shared with 10.0.0.2, which has no virtual port yet.
   void shareEthernet1() {
      interfaceIs( "Ethernet1", 0, 5 );
      segmentIs( "Ethernet1", { "10.0.0.2" } );
   }

   // --- The machine
   Machine machineNew( Variant variant ) {
      if ( variant == Variant::EgressMask ) {
         return Vornal::evpnMultihomingLocalBiasWithEgressMaskSmFactory( vcsd, dir, vpIndexStatus,
                                                                         evpnStatus, vtiStatusDir,
                                                                         ingress, activity.clock(),
                                                                         lagConfig, lagMapping );
      }
      return Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
         vcsd, dir, vpIndexStatus, evpnStatus, vtiStatusDir, ingress, activity.clock(), lagConfig,
         lagMapping, egress, classIdConfig, classIdStatus );
   }

   // --- What is seen
   // The traced lines that begin with "LEVEL TEXT".
   Lines tracesOf( std::string const & beginning ) const {
      Lines found;
      std::copy_if( traces.begin(), traces.end(), std::back_inserter( found ),
                    [ & ]( std::string const & line ) { return line.starts_with( beginning ); } );
      return found;
   }
   bool hasTraced( std::string const & line ) const {
      return std::find( traces.begin(), traces.end(), line ) != traces.end();
   }
   // The calls that reached the hardware, as lines.
   Lines callLines() const {
      Lines lines;
      std::transform( calls.begin(), calls.end(), std::back_inserter( lines ), ChipTest::textOf );
      return lines;
   }
   Chip::CallObserver & callObserver() { return *this; }
   void forget() {
      traces.clear();
      calls.clear();
      logs.clear();
   }

   Lines traces;  // "LEVEL TEXT" of the handle VornalEvpnSm
   Lines logs;
   std::vector< Chip::HardwareCall > calls;
   // What a test does after each call that has reached the hardware.
   std::function< void() > afterCall = [] {};

   Kiv::ActivityLockAnchor locked{ activity };
   // The entry managers that machineNew() gives the machine.
   Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > ingress =
      board.entryManager( Vornal::kIfpLocalBiasGroup );
   Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > egress =
      board.entryManager( Vornal::kEfpLocalBiasGroup );

 private:
   static Chip::BoardConfig configOf( U16 units, U32 capacity ) {
      Chip::BoardConfig config;
      for ( U16 unit = 0; unit < units; ++unit ) {
         config.units.push_back( { .number = unit,
                                   .modId = modIdOf( unit ),
                                   .capacities = { { Vornal::kIfpLocalBiasGroup, capacity },
                                                   { Vornal::kEfpLocalBiasGroup, capacity } } } );
      }
      return config;
   }
   void callMade( Chip::HardwareCall const & call ) override {
      calls.push_back( call );
      afterCall();
   }

   Chip::RecordingSdk recorder_;
};

}  // namespace Support
