// A random story in this process, and every kind of frame whenever the switch is at rest.
//
// The agent runs here, as in a process of its own; so does the reference. A stop of the plug-in
// ends the process. So this belongs in a child process.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <FrameSet.h>
#include <Moves.h>

namespace Rest {

// Plain memory, which two processes can have in common.
struct Outcome {
   std::uint64_t frames = 0;                // judged
   std::array< char, 16384 > difference{};  // the first one, and a scenario; empty for none

   bool isOff() const { return difference.front() != 0; }
   void differs( std::string const & how );
};

// How the story goes on this switch: its steps but those about frames, and its forwarding.
Moves::Story storyWithoutFrames( Moves::Story story );

// The outcome is complete up to each frame, also when the process ends.
void play( Moves::Story const & story, std::vector< Frames::Arriving > const & frames,
           std::filesystem::path const & plugIn, Outcome & outcome );

}  // namespace Rest
