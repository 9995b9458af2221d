// The text of a scenario's file.
//
// A file, a pipe or standard input, read to its end. A directory, what is not there, what may not
// be read and what is empty are told apart, each with its remedy and without a line, since none is
// to blame. What no scenario can be is not taken in whole: a text ends at kLongest bytes.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include <Scenario/ReadError.h>

namespace Scenario {

// A text that is longer is no scenario.
inline constexpr std::size_t kLongest = std::size_t{ 16 } * 1024 * 1024;

// How long a named pipe may be without anybody who writes.
inline constexpr std::chrono::milliseconds kPatience{ 3000 };

// What stands in `file`. ReadError when it cannot be read, or nothing stands there.
std::string textIn( std::filesystem::path const & file,
                    std::chrono::milliseconds patience = kPatience );

// What comes through a descriptor, up to its end; `file` names it in problems. Not closed.
std::string textOf( int descriptor, std::filesystem::path const & file );

// Why `file` could not be opened or read, by the number of the system's error.
Problem whyUnreadable( std::filesystem::path const & file, int error );

}  // namespace Scenario
