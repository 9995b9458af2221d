// Tells the observer what reaches the chip, and what became of the rule that it was about.
//
// After every call that can change an entry, the rule follows as it stands then, so that a story
// that ends in the middle of a rule knows the rule as far as it got.
//
// Threads: the calls come from the activity's thread, with or without the activity lock; no entity
// and no reference is touched.
#pragma once

#include <map>

#include <Calls/HardwareCall.h>
#include <FieldProcessor/Unit.h>
#include <Snapshot/Rules.h>
#include <Story/Observer.h>

namespace Reporters {

class ChipReporter final : public Chip::CallObserver {
 public:
   explicit ChipReporter( Story::Observer & observer ) : observer_( observer ) {}

   // The units that the calls are about. They must outlive their use.
   void unitsAre( Chip::Units & units ) { units_ = &units; }

   void callMade( Chip::HardwareCall const & call ) override;

   // Tells the rule as it stands now, unless it has been told so.
   void tellRule( U32 unit, U32 id );

 private:
   Story::Observer & observer_;
   Chip::Units * units_ = nullptr;
   std::map< std::pair< U32, U32 >, Chip::Rule > told_;  // by unit and id, as told last
};

}  // namespace Reporters
