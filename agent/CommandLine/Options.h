// What was asked for on the command line.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <variant>
#include <vector>

#include <Scenario/Scenario.h>
#include <StateDatabase/EntityPath.h>

namespace CommandLine {

// How long a turn may take, unless it is said otherwise: longer than any that gets on, and as long
// as a person waits before they look what is wrong.
inline constexpr std::chrono::milliseconds kTurnLimit = std::chrono::seconds( 60 );

struct RunOptions {
   std::filesystem::path scenario;
   std::optional< std::filesystem::path > plugin;  // nothing: the one that comes with the program
   std::optional< std::filesystem::path > ring;    // the trace ring's file
   std::vector< Scenario::TraceLevels > trace;
   bool isJson = false;
   std::optional< std::filesystem::path > captures;   // the folder for what leaves each port
   std::chrono::milliseconds turnLimit = kTurnLimit;  // 0: none
};

struct ShowOptions {
   std::filesystem::path scenario;
   std::optional< StateDatabase::EntityPath > path;  // nothing: the paths at which entities are
   std::optional< std::filesystem::path > plugin;
   bool isJson = false;
   std::chrono::milliseconds turnLimit = kTurnLimit;
};

struct VerifyOptions {
   std::filesystem::path scenario;
   std::optional< std::filesystem::path > plugin;
   bool isAfterEachStep = false;
   bool isJson = false;
   std::chrono::milliseconds turnLimit = kTurnLimit;
};

struct RingOptions {
   std::filesystem::path file;
};

using Command = std::variant< RunOptions, ShowOptions, VerifyOptions, RingOptions >;

// There is nothing to do but to end with this exit code: help was asked for and has been printed,
// or the usage was wrong and standard error says how.
struct Done {
   int exitCode = 0;
};

// Help goes to `out`.
std::variant< Command, Done > parse( int argc, char const * const * argv, std::ostream & out );

}  // namespace CommandLine
