// Reads the text of a scenario's file.
//
// The file can be a file, a pipe or standard input, and is read to its end. A directory, a missing
// file, one without the right to read it and an empty one each have a message with a remedy. These
// messages have no line, since no line is to blame. Reading stops at kLongest bytes, because no
// scenario is longer.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include <Scenario/ReadError.h>

namespace Scenario {

// No scenario is longer.
inline constexpr std::size_t kLongest = std::size_t{ 16 } * 1024 * 1024;

// The time to wait for a writer of a named pipe.
inline constexpr std::chrono::milliseconds kPatience{ 3000 };

// The text of `file`. ReadError when it cannot be read, or is empty.
std::string textIn( std::filesystem::path const & file,
                    std::chrono::milliseconds patience = kPatience );

// The text from a descriptor, up to its end; `file` names it in problems. Does not close it.
std::string textOf( int descriptor, std::filesystem::path const & file );

// Why `file` could not be opened or read; `error` is the system's error number.
Problem whyUnreadable( std::filesystem::path const & file, int error );

}  // namespace Scenario
