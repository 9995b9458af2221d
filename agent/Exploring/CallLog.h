// The calls of a run that have reached the chip, in memory that outlives its process.
//
// Each call is there as soon as it has been added, so that the log of a process that was killed is
// whole.
#pragma once

#include <vector>

#include <Calls/HardwareCall.h>
#include <Process/Descriptor.h>

namespace Exploring {

struct LoggedCall {
   U32 steps = 0;  // that had begun
   Chip::HardwareCall call;
};

class CallLog {
 public:
   // std::system_error without memory.
   CallLog();

   void add( LoggedCall const & logged ) const;
   std::vector< LoggedCall > calls() const;

 private:
   Process::Descriptor bytes_;
};

}  // namespace Exploring
