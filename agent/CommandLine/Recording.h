// Keeps a run in a record: the inputs, then every event.
//
// The file's earlier content stays until the plug-in is loaded. So a command that is refused, or
// whose plug-in cannot be opened, costs nobody an earlier record.
#pragma once

#include <vector>

#include <Record/Writer.h>
#include <Scenario/Scenario.h>

namespace CommandLine {

class Recording final : public Story::Observer {
 public:
   // The record holds the setup and all files of the scenario: its own texts, the captures that it
   // names, and its feature files. `setup` says the words of the command; the rest of it is filled
   // in here. The scenario must outlive the recording. Fails as Record::FileWriter does, in every
   // call.
   Recording( std::filesystem::path const & file, Record::Setup setup,
              Scenario::Model const & scenario );

   void onEvent( Story::Event const & event ) override;

 private:
   void begin();

   Scenario::Model const & scenario_;
   Record::Writer record_;
   bool hasBegun_ = false;
   std::vector< Story::Event > before_;  // the first events, which come before the inputs are kept
};

}  // namespace CommandLine
