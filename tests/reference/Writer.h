// Writes moves as steps of a scenario, and follows the switch as far as the next step depends on
// it.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <Moves.h>

namespace Moves {

class Writer {
 public:
   using Name = std::string;
   using Yaml = std::optional< std::string >;

   explicit Writer( World const & world );

   // The step, if the move can do something now.
   Yaml step( Move const & move );

   // A frame of every VTEP that the switch has a virtual port for.
   std::vector< Step > looks() const;

   static unsigned kinds();

 private:
   using Kind = Yaml ( Writer::* )( Move const & );
   static std::vector< Kind > const & table();

   // --- Segments and VTEPs
   Yaml vtepJoins( Move const & move );
   Yaml vtepLeaves( Move const & move );
   Yaml segmentGoes( Move const & move );
   Yaml segmentReplaced( Move const & move );
   Yaml emptySegmentIs( Move const & move );
   Yaml virtualPortIs( Move const & move );
   Yaml virtualPortGoes( Move const & move );
   Yaml otherKeyIs( Move const & move );
   Yaml otherKeyGoes( Move const & move );
   // Whether another key has that number in the chip.
   bool isVirtualPortTaken( Name const & key, unsigned number ) const;

   // --- Interfaces
   Yaml portIs( Move const & move );
   Yaml portGoes( Move const & move );
   Yaml memberJoins( Move const & move );
   Yaml memberLeaves( Move const & move );

   // --- Tunnel interfaces
   Yaml vniIs( Move const & move );
   Yaml vniGoes( Move const & move );
   Yaml tunnelGoes( Move const & move );
   Yaml tunnelReplaced( Move const & move );

   // --- Room, class ids, frames
   Yaml othersHold( Move const & move );
   Yaml grantIs( Move const & move );
   Yaml grantGoes( Move const & move );
   Yaml allocatorPauses( Move const & move );
   Yaml designatedIs( Move const & move );
   Yaml hostSends( Move const & move );
   Yaml hostIsSentTo( Move const & move );

   // --- Faults, verification
   bool hasFaults() const { return world_.hasFaults && !world_.isCalm; }
   Yaml callFails( Move const & move );
   Yaml entryIsRefused( Move const & move );
   Yaml passRuns( Move const & move );
   // Whether every VTEP that shares a segment has a virtual port.
   bool haveAllVirtualPorts() const;

   // Whether the VTEP has a virtual port, under any key.
   bool isInChip( Name const & vtep ) const;
   Name const & segmentOf( Move const & move ) const;
   Name const & tunnelOf( Move const & move ) const;
   // The VTEP may give its class id back, and an allocator that serves takes it.
   void grantIsUncertain( Name const & vtep );
   // While two interfaces have one port, the program refuses frames and designations.
   bool canForward() const;
   bool hasPort( Name const & intf ) const;

   World const & world_;
   std::map< Name, std::string > port_;  // "0/3", unit and port
   std::map< Name, Name > portChannelOf_;
   std::map< Name, std::set< Name > > segments_;
   std::map< Name, unsigned > virtualPort_;      // by VTEP
   std::map< Name, unsigned > otherKey_;         // "10.0.0.2#west", with a virtual port, too
   std::map< Name, std::set< Name > > tunnels_;  // with their VRFs
   std::set< Name > granted_;                    // by hand, and certainly there
   bool isPaused_ = false;
   unsigned freshPort_ = 9;
   unsigned freshVni_ = 50000;
};

}  // namespace Moves
