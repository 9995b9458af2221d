// Where a frame goes, all in all: what the switch knows of its stations, the kind of the frame, and
// the places that it is for. The rules are not asked here; KeptBack (Frames.h) says which of the
// places they keep it back from.
//
// A station is known in a VLAN from its first frame there: behind the interface or the VTEP that
// the frame came from. It is forgotten when that is no place any more. A port channel stays a place
// without members; a VTEP is one while it has a virtual port under any key.
//
// Each station sends from one place only; nothing is said about one that moves.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <Frames/Frames.h>

namespace Reference {

using Mac = std::uint64_t;

enum class To { everybody, group, routedGroup, station, router };

struct Sending {
   Frame frame;  // its kind, and the VLAN of one that a VTEP sends, are found here
   Mac source = 0;
   To to = To::everybody;
   // The receiver of To::station and To::router. 0: the router has no route.
   Mac station = 0;
   Vlan routedInto = 0;
};

// The places that a frame is for. None when the switch drops it.
struct Places {
   std::vector< Interface > interfaces;
   std::vector< Vtep > vteps;
};

class Reach {
 public:
   // Both outlive it.
   Reach( Switch const & device, Forwarding const & forwarding )
         : device_( device ), forwarding_( forwarding ) {}

   // The state is another one than at the last frame.
   void stateChanged();
   // The frame is sent. Its sender is known from now on.
   Places take( Sending & sending );

   bool isKnown( Mac station ) const;

 private:
   using Place = std::variant< Interface, Vtep >;
   using Station = std::pair< Vlan, Mac >;

   bool isPlace( Place const & place ) const;
   bool isTunnel( Vtep const & vtep ) const;
   bool isReachable( Vtep const & vtep ) const;
   bool admit( Frame & frame ) const;
   Places flooded( Frame const & frame );
   Places toPlace( Place const & place ) const;
   Places toStation( Frame & frame, Station const & station, bool isRouted );

   Switch const & device_;
   Forwarding const & forwarding_;
   std::map< Station, Place > stations_;
   // By whether a VTEP has sent the frame, its VLAN, and its interface of arrival.
   std::map< std::pair< bool, std::pair< Vlan, Interface > >, Places > flooded_;
};

}  // namespace Reference
