// The commands of the program. Each does its work, prints its result on `out` and gives the exit
// code back; docs/program.md describes them. `out` is the program's standard output.
//
// Failures: what was given wrong is thrown (Scenario::ReadError, Story::InputError,
// std::system_error, Quelm::Error) before anything is loaded, or printed on standard error when it
// shows later. What `out` throws (OutputStream.h) passes through and ends the run.
#pragma once

#include <ostream>

#include <CommandLine/Options.h>
#include <Story/Outcome.h>

namespace CommandLine {

Story::ExitCode run( RunOptions const & options, std::ostream & out );
Story::ExitCode show( ShowOptions const & options, std::ostream & out );
Story::ExitCode verify( VerifyOptions const & options, std::ostream & out );
Story::ExitCode ring( RingOptions const & options, std::ostream & out );

}  // namespace CommandLine
