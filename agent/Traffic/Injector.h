// The traffic of a scenario: injects frames into the switch and reports what becomes of them.
//
// Before every injection, the injector builds the forwarding configuration from the published
// state: interfaces with a live port, port channels with their members, and for each remote VTEP
// with a virtual port a tunnel and a place in every flood list. The scenario's own configuration
// gives the rest. So the chip forwards by the same state from which the plug-in programs it.
//
// The observer is told every frame with its verdict at every port. The frames that leave can be
// written into captures, one for each port. The captures hold every frame that has been told, even
// if this process stops.
//
// The scenario's reader makes sure that a scenario with frames has a forwarding configuration with
// at least one underlay interface.
//
// Failures: Quelm::Error for an interface without a port, and for a capture that cannot be read;
// then nothing of that step is injected, except the frames before the damage of a capture.
// Quelm::Error also when a capture cannot be written.
//
// A frame can be explained instead: it goes nowhere, and nothing changes.
//
// Threads: the activity's.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>

#include <Board/Board.h>
#include <Capture/PortCaptures.h>
#include <Explanation/Explanation.h>
#include <Frames/FrameFields.h>
#include <Kiv/Activity.h>
#include <Peers/PublishedState.h>
#include <Pipeline/Pipeline.h>
#include <Story/Observer.h>
#include <Traffic/FrameAsked.h>

namespace Traffic {

class Injector {
 public:
   // All members must outlive the injector.
   struct Context {
      Scenario::Model const & scenario;
      Peers::PublishedState const & published;
      Chip::Units const & units;
      Kiv::ActivityManager const & activity;
      Story::Observer & observer;
   };

   explicit Injector( Context const & context );

   // Writes captures of the leaving frames into that folder, which must exist.
   void captureInto( std::filesystem::path const & folder ) { captures_.emplace( folder ); }

   // Injects a frame of these fields on the interface, or by default on the first that carries
   // VXLAN. A frame through a tunnel goes to the switch's own VTEP.
   void inject( Chip::FrameFields const & fields, std::optional< Pelk::IntfId > const & on );
   // Injects the frames of a capture, one after the other.
   void injectCapture( std::filesystem::path const & file, Pelk::IntfId const & on );
   // Sets for each of these interfaces whether it is the designated forwarder.
   void designateForwarders( std::map< Pelk::IntfId, bool > const & isDesignated );

   // --- Questions

   // The number of frames that have come in.
   U64 frames() const { return frames_; }
   // The MAC addresses that have been learned, by VLAN and address.
   std::vector< Chip::LearnedMac > macs() const { return pipeline_.macs(); }
   // The interfaces that are to carry VLANs or VXLAN, with a port or without one.
   std::set< Pelk::IntfId > configured() const;

   // The onlooker is told of every frame from now on, and must outlive them.
   void watch( Onlooker & onlooker ) { onlooker_ = &onlooker; }
   // The frame, of a capture or written, where it would come in now.
   ArrivingFrame arriving( FrameAsked const & asked );
   // What would become of the frame now, and why. Tells at most that many rules that miss it, for
   // each lookup.
   Chip::Explanation explain( ArrivingFrame const & frame, std::size_t nearMisses );

 private:
   class Nowhere final : public Chip::Transmitter {
    public:
      void transmit( VornalTypes::VornalPort, Chip::Bytes ) override {}
   };

   void prepare();
   Chip::ForwardingConfig forwardingNow() const;
   VornalTypes::VornalPort portOf( Pelk::IntfId const & intfId ) const;
   Pelk::IntfId arrivalOf( std::optional< Pelk::IntfId > const & on ) const;
   std::vector< U8 > bytesOf( Chip::FrameFields fields ) const;
   ArrivingFrame frameOf( CapturedFrame const & captured ) const;
   void tellBegin( Pelk::IntfId const & arrival, U64 frames );
   void forward( VornalTypes::VornalPort arrival, Chip::Bytes frame );

   Context context_;
   std::optional< Scenario::Forwarding > forwarding_;
   Chip::Pipeline pipeline_;
   std::optional< Chip::PortCaptures > captures_;
   Nowhere nowhere_;
   U64 frames_ = 0;
   Onlooker * onlooker_ = nullptr;  // nobody looks on
};

}  // namespace Traffic
