// The binary trace ring: the last lines of a process, readable after it has stopped.
//
// A ring is a block of memory that its owner provides; the agent maps a file, so that the block is
// still there when the process is not. It holds a header and a number of slots of one fixed size.
// Line n goes to slot n modulo their number and overwrites the line there. A slot is marked as
// being written before, and as complete after its text is in place: a stop in mid-line costs that
// line only.
//
// A line longer than a slot is cut; its slot says so. Times are those of the agent's clock where
// there is one, in nanoseconds, and 0 elsewhere. A line also carries the number of the step that
// its owner was in, which tells one from another in a run that takes no time.
//
// The layout is the machine's own byte order and read by the program that wrote it: the decoder
// checks a mark and a version, and refuses anything else with Quelm::TextError.
//
// Cost: one copy a line, no allocation. Threads: writers hold the activity lock.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include <Quelm/Integers.h>
#include <Trace/Trace.h>

namespace Trace {

class Ring {
 public:
   static constexpr std::size_t kSlotSize = 256;
   // The block size that holds `slots` lines.
   static constexpr std::size_t sizeFor( std::size_t slots ) { return ( slots + 1 ) * kSlotSize; }

   // Takes `memory` over and empties it. At least one slot, aligned to 8 bytes; RangeError
   // otherwise.
   explicit Ring( std::span< std::byte > memory );

   void lineNew( Line const & line );
   // The step of the lines that follow; 0 before the first call.
   void stepIs( U32 step ) { step_ = step; }

   struct Decoded {
      U64 number;  // from 0, counted since the ring was made
      S64 time;    // nanoseconds
      U32 step;
      int level;
      bool isCut;
      std::string handle;
      std::string text;
   };

   // The lines that a block holds, oldest first.
   static std::vector< Decoded > decode( std::span< std::byte const > memory );

 private:
   std::span< std::byte > memory_;
   U64 slots_;
   U64 next_ = 0;
   U32 step_ = 0;
};

}  // namespace Trace
