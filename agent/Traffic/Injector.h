// The traffic of a scenario: frames that are injected into the switch, and what becomes of them.
//
// How the switch forwards is made anew from what is published before every injection: interfaces
// with a live port, port channels with their members, a tunnel and a place in every flood list for
// each remote VTEP that has a virtual port. The rest is the scenario's own configuration. So the
// chip forwards by the same state as the plug-in programs it by.
//
// Every frame is told to the observer with its verdict at every port. What leaves can be written
// into captures, one for each port; a frame that has been told is in them, whatever becomes of this
// process.
//
// A scenario with frames says how the switch forwards, with an underlay interface at least; its
// reader sees to that.
//
// Failures: Quelm::Error for an interface without a port, and for a capture that cannot be read;
// nothing of that step is injected then, but the frames before a capture's damage. Quelm::Error as
// well for a capture that does not take what leaves.
//
// Threads: the activity's.
#pragma once

#include <filesystem>
#include <map>
#include <optional>

#include <Board/Board.h>
#include <Capture/PortCaptures.h>
#include <Frames/FrameFields.h>
#include <Kiv/Activity.h>
#include <Peers/PublishedState.h>
#include <Pipeline/Pipeline.h>
#include <Story/Observer.h>

namespace Traffic {

class Injector {
 public:
   // What it works on; everything must outlive it.
   struct Context {
      Scenario::Model const & scenario;
      Peers::PublishedState const & published;
      Chip::Units const & units;
      Kiv::ActivityManager const & activity;
      Story::Observer & observer;
   };

   explicit Injector( Context const & context );

   // Captures of what leaves go into that folder, which is there.
   void captureInto( std::filesystem::path const & folder ) { captures_.emplace( folder ); }

   // A frame of these fields comes in on the interface; if none is given, on the first that carries
   // VXLAN. A frame through a tunnel is sent to the switch's own VTEP.
   void inject( Chip::FrameFields fields, std::optional< Pelk::IntfId > const & on );
   // The frames of a capture come in, one after the other.
   void injectCapture( std::filesystem::path const & file, Pelk::IntfId const & on );
   // Whether each of these interfaces is the designated forwarder.
   void designatedAre( std::map< Pelk::IntfId, bool > const & isDesignated );

 private:
   class Nowhere final : public Chip::Transmitter {
    public:
      void transmit( VornalTypes::VornalPort, Chip::Bytes ) override {}
   };

   void prepare();
   Chip::ForwardingConfig forwardingNow() const;
   VornalTypes::VornalPort portOf( Pelk::IntfId const & intfId ) const;
   void forward( VornalTypes::VornalPort arrival, Chip::Bytes frame );

   Context context_;
   std::optional< Scenario::Forwarding > forwarding_;
   Chip::Pipeline pipeline_;
   std::optional< Chip::PortCaptures > captures_;
   Nowhere nowhere_;
   U64 frames_ = 0;
};

}  // namespace Traffic
