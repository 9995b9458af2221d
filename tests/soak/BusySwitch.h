// A switch with many VTEPs, and events that may happen to it in any order for as long as one likes.
//
// Why. A switch runs for months. What it keeps for each event that is over, it runs out of some
// day; and a record that one event in ten thousand leaves behind shows in no short story.
//
// What. 64 VTEPs share eight port channels, which have a member on each of four units. Each event
// is a step of the language of scenarios. It is read once, at the start; then only its number is
// drawn. VTEPs join and leave segments, virtual ports come, change and go, segments go with all
// their VTEPs, members of port channels join, leave and get another port, designations change. No
// frames arrive: the agent counts what each rule has kept back, and keeps the counts of rules that
// are gone (Questions/Chronicle.h), so it would grow by design.
//
// Invariant. No known limit of the plug-in (docs/limits.md) lies in any order of the events, so the
// rules are those that the state calls for behind each of them:
// - a member or a port changes only while its segment is without VTEPs;
// - there is room for all rules, and a class id for each VTEP;
// - no VRF has a VNI, because rules of VNIs are not right on several units;
// - each event is a turn of its own.
//
// The class says which event may happen next, and follows the switch as far as that depends on it.
// It never asks the switch: what it says is the same for each seed.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <Scenario/Reader.h>

namespace Soak {

class BusySwitch {
 public:
   BusySwitch( std::string const & variant, std::uint64_t seed );

   // A scenario of the switch, which is ready and shares nothing; and all events as steps that may
   // follow.
   std::string scenario() const;
   std::vector< Scenario::AddedStep > events() const;

   // The number of the event that happens next.
   std::size_t next();

 private:
   static constexpr unsigned kVteps = 64;
   static constexpr unsigned kUnits = 4;
   static constexpr unsigned kSegments = 8;

   struct Member {
      bool isJoined = true;
      bool isMoved = false;  // on its second port
   };
   struct Vtep {
      unsigned virtualPort = 0;  // 0: none, else its first or its second one
      std::set< unsigned > segments;
   };

   unsigned below( unsigned end ) { return static_cast< unsigned >( numbers_() % end ); }
   void addVtepEvents();
   void addSegmentEvents();
   static std::string memberName( unsigned segment, unsigned unit );
   static std::string memberIs( unsigned segment, unsigned unit, bool isJoined );
   static std::string portIs( unsigned segment, unsigned unit, bool isMoved );

   std::string event();
   std::string joinOrLeave();
   std::string virtualPortChanges();
   std::string segmentGoes();
   std::string memberChanges();
   std::string designationChanges();

   std::string variant_;
   std::mt19937_64 numbers_;
   std::vector< std::string > texts_;
   std::map< std::string, std::size_t > numberOf_;  // of a text
   std::array< Vtep, kVteps > vteps_;
   std::array< std::array< Member, kUnits >, kSegments > members_;
   std::set< unsigned > segments_;  // that are there, with VTEPs or without
   // The segment that has just gone, and how many changes its members have before it comes again.
   unsigned gone_ = 0;
   unsigned changesLeft_ = 0;
};

}  // namespace Soak
