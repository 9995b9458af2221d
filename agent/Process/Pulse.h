// Shows one process that another makes progress: a count in memory that both see.
//
//    Pulse pulse;              before the fork
//    pulse.beat();             in the child, whenever it has got on
//    pulse.beats();            in the parent: a count that stays the same means that it has not
//
// Failures: std::system_error when there is no memory for it.
#pragma once

#include <Quelm/Integers.h>

namespace Process {

class Pulse {
 public:
   Pulse();
   Pulse( Pulse const & ) = delete;
   Pulse & operator=( Pulse const & ) = delete;
   ~Pulse();

   void beat();
   U64 beats() const;

 private:
   U64 * count_;
};

}  // namespace Process
