// The files that a scenario needs, written beside it: the captures and the feature files.
//
// A record holds the files of its run. A scenario that is made of the record must not name them
// where the run had them: that can be another machine. So they go into a folder beside the
// scenario, "short-files" for "short.yaml".
#pragma once

#include <filesystem>
#include <string>

#include <CommandLine/OutputFile.h>
#include <Scenario/Root.h>
#include <Scenario/Yaml.h>

namespace CommandLine {

// Copies the files that the document names from the root into the folder beside `scenario`, and
// returns the document with their new paths. The paths in the document begin in the folder of
// `scenario`. Makes no folder for a document that names no files. Story::InputError when a file
// cannot be copied; then a new folder is gone again.
Scenario::Yaml withFilesBeside( Scenario::Yaml document, std::filesystem::path const & scenario,
                                Scenario::Root const & root );

// What a command does about the files of the scenario that it writes.
class FilesBeside {
 public:
   // `isOfRecord`: a record holds the files; otherwise they stay where they are.
   FilesBeside( OutputFile const & output, bool isOfRecord )
         : output_( output ), isOfRecord_( isOfRecord ) {}

   // To be called before the work. Throws Story::InputError where the scenario must not be written,
   // or its files.
   void check() const;
   // The document, with the files of a record beside the scenario.
   Scenario::Yaml taken( Scenario::Yaml document, Scenario::Root const & root ) const;
   // The comment on a scenario whose files have stayed in the record; empty for another one.
   std::string comment( Scenario::Yaml const & document ) const;

 private:
   OutputFile const & output_;
   bool isOfRecord_;
};

}  // namespace CommandLine
