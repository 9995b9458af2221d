// Frames as a story tells them.
#pragma once

#include <filesystem>

#include <Pipeline/Story.h>
#include <Story/Event.h>

namespace Reporters {

// The frame with that number of the run.
Story::FrameForwarded frameOf( Chip::FrameStory const & story, U64 number );

// How many frames a capture holds. Throws as Chip::CaptureReader does.
U64 framesIn( std::filesystem::path const & capture );

}  // namespace Reporters
