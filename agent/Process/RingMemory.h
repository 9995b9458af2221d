// The memory of a trace ring: shared with child processes, so that what a child traced last can be
// read after it has stopped, and on request a file, so that it can be read at any later time.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

#include <Story/Event.h>
#include <Trace/Ring.h>

namespace Process {

class RingMemory {
 public:
   static constexpr std::size_t kLines = 4096;

   // In `file`, which is created or overwritten, or in memory alone. Throws std::system_error
   // naming the file.
   explicit RingMemory( std::optional< std::filesystem::path > const & file = std::nullopt );
   RingMemory( RingMemory const & ) = delete;
   RingMemory & operator=( RingMemory const & ) = delete;
   ~RingMemory();

   std::span< std::byte > bytes() const { return bytes_; }

 private:
   std::span< std::byte > bytes_;
};

// The last `most` lines of a ring, oldest first; none when the memory holds no ring.
std::vector< Story::TraceLine > lastLines( std::span< std::byte const > ring, std::size_t most );

}  // namespace Process
