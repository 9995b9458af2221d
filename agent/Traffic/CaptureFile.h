// Opens capture files whose names a person has given.
#pragma once

#include <filesystem>

#include <Capture/CaptureReader.h>

namespace Traffic {

// Throws Quelm::Error with the remedy when the file is no capture; any file can be given as one.
Chip::CaptureReader openedCapture( std::filesystem::path const & file );

// How many frames it holds; reads all of them. Throws Quelm::Error when one is damaged.
U64 framesIn( std::filesystem::path const & file );

}  // namespace Traffic
