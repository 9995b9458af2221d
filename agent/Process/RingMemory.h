// The memory of a trace ring: shared with child processes, so that what a child traced last can be
// read after it has stopped, and on request a file, so that it can be read at any later time.
//
// A file is taken only when it is new, empty, or the ring of a run that is over; anything else
// stays as it is. As long as the memory is there it holds the file's lock (flock), which says that
// the run goes on. A file is never made shorter.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

#include <Process/Descriptor.h>
#include <Story/Event.h>
#include <Trace/Ring.h>

namespace Process {

class RingMemory {
 public:
   static constexpr std::size_t kLines = 4096;

   // In `file`, as a ring without lines, or in memory alone. Throws std::system_error when the file
   // cannot be written, and Quelm::Error when it may not be taken; both name it.
   explicit RingMemory( std::optional< std::filesystem::path > const & file = std::nullopt );
   RingMemory( RingMemory const & ) = delete;
   RingMemory & operator=( RingMemory const & ) = delete;
   ~RingMemory();

   std::span< std::byte > bytes() const { return bytes_; }

 private:
   Descriptor file_;  // holds the lock
   std::span< std::byte > bytes_;
};

// Whether all of the memory can be read: not when somebody has cut its file short.
bool isWhole( std::span< std::byte const > ring );

// The last `most` lines of a ring, oldest first; none when the memory holds no ring, or is not
// whole.
std::vector< Story::Traced > lastLines( std::span< std::byte const > ring, std::size_t most );

}  // namespace Process
