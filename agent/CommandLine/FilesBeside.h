// The files that a scenario needs, written beside it: the captures and the feature files.
//
// A record holds the files of its run. A scenario that is made of the record must not name them
// where the run had them: that can be another machine. So they go into a folder beside the
// scenario, "short-files" for "short.yaml".
#pragma once

#include <filesystem>

#include <Scenario/Root.h>
#include <Scenario/Yaml.h>

namespace CommandLine {

// The comment on a scenario that names files of a record.
inline constexpr char kFilesInRecord[] =
   "# The record holds the files that it names; -o FILE writes them beside FILE.\n";

// The folder for the files of a scenario in that file.
std::filesystem::path folderBeside( std::filesystem::path const & scenario );

// Whether the document names captures or feature files.
bool namesFiles( Scenario::Yaml const & document );

// Copies the files that the document names from the root into the folder beside `scenario`, and
// returns the document with their new paths. The paths in the document begin in the folder of
// `scenario`. Makes no folder for a document that names no files. Story::InputError when a file
// cannot be copied; then a new folder is gone again.
Scenario::Yaml withFilesBeside( Scenario::Yaml document, std::filesystem::path const & scenario,
                                Scenario::Root const & root );

}  // namespace CommandLine
