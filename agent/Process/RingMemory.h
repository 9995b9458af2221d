// The memory of a trace ring. Child processes share it, so that a child's last traces can be read
// after it has stopped. It can also be a file, which can be read at any later time.
//
// It takes only a file that is new or empty, or that holds the ring of a finished run. It leaves
// all other files unchanged. While the memory exists it holds the file's lock (flock), which marks
// the run as going on. It never makes a file shorter.
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

   // A ring without lines, in `file` or in memory alone. Throws std::system_error when the file
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

// All of the memory can be read; false when somebody has cut its file short.
bool isWhole( std::span< std::byte const > ring );

// The last `most` lines of a ring, oldest first. None when the memory holds no ring, or is not
// whole.
std::vector< Story::Traced > lastLines( std::span< std::byte const > ring, std::size_t most );

}  // namespace Process
