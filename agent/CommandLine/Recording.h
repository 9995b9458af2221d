// Begins the record of a run.
#pragma once

#include <memory>

#include <Record/Writer.h>
#include <Scenario/Scenario.h>

namespace CommandLine {

// A record in `file` that holds the setup and all files of the scenario: its own texts, the
// captures that it names, and its feature files. `setup` says the words of the command; the rest of
// it is filled in here.
std::unique_ptr< Record::Writer > recordNew( std::filesystem::path const & file,
                                             Record::Setup setup,
                                             Scenario::Model const & scenario );

}  // namespace CommandLine
