// The commands of the program. Each does its work, prints its result on standard output and gives
// the exit code back; docs/program.md describes them.
//
// Failures: what was given wrong is thrown (Scenario::ReadError, Host::InputError,
// std::system_error, Quelm::Error) before anything is loaded, or printed on standard error when it
// shows later.
#pragma once

#include <CommandLine/Options.h>
#include <Story/Outcome.h>

namespace CommandLine {

Story::ExitCode run( RunOptions const & options );
Story::ExitCode show( ShowOptions const & options );
Story::ExitCode verify( VerifyOptions const & options );
Story::ExitCode ring( RingOptions const & options );

}  // namespace CommandLine
