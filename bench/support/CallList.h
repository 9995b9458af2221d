// The hardware calls that a switch made, to be made again without the plug-in.
//
// Making them again is the limit for the plug-in's speed: the same calls through the same guard,
// shim and entry managers into the same chip, and nothing else. A list is compact and holds every
// call as it is passed, so that making it costs next to nothing beside the call.
//
// The list observes a switch (RecordingSdk and the entry managers tell it). It is made again on a
// chip that is as the first one was when the list began: entries then get the ids that they had.
#pragma once

#include <set>
#include <string>
#include <vector>

#include <Board/Board.h>
#include <Calls/HardwareCall.h>
#include <Shim/OneCallSdk.h>

namespace Bench {

class CallList final : public Chip::CallObserver {
 public:
   void callMade( Chip::HardwareCall const & call ) override;

   // The activity lock is held, and Shim::sdk_ leads to the board. Quelm::Error when an entry gets
   // another id than it had.
   void makeOn( Chip::Board & board ) const;

   std::size_t size() const { return made_.size(); }

 private:
   enum class Kind : U8 { Field, Get, Install, Reinstall, Release, Priority, AddMask, UpdateMask };

   struct Made {
      Kind kind;
      U16 group;          // of an entry manager
      Shim::Call call;    // its unit and entry are those of an entry manager's call, too
      char const * text;  // of a field call
   };

   void fieldCallMade( Chip::HardwareCall const & call, Shim::Call const & made );
   void managerCallMade( Chip::HardwareCall const & call );

   std::vector< Made > made_;
   std::set< std::string > texts_;
   // What does not fit into `Made`, in the order of the calls that have it.
   std::vector< std::string > names_;  // of entries
   std::vector< U32 > priorities_;
   std::vector< _shr_pbmp > masks_;
};

}  // namespace Bench
