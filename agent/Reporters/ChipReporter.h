// Tells the observer each call that reaches the chip, and the state of its rule after the call.
//
// It tells the rule after every call that can change an entry. So a story that ends in the middle
// of a rule shows the rule as far as it got.
//
// Threads: the calls come from the activity's thread, with or without the activity lock; the
// reporter touches no entity and no reference.
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

   // The units of the calls. They must outlive their use.
   void unitsIs( Chip::Units & units ) { units_ = &units; }

   void callMade( Chip::HardwareCall const & call ) override;

   // Tells the rule as it stands now, unless its last report was the same.
   void reportRule( U32 unit, U32 id );

 private:
   Story::Observer & observer_;
   Chip::Units * units_ = nullptr;
   std::map< std::pair< U32, U32 >, Chip::Rule > reported_;  // by unit and id, as last reported
};

}  // namespace Reporters
