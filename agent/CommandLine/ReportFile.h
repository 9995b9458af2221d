// The file of `run --report`: the page of a report, written when the run is over.
//
// It is there as a whole or not at all. A page takes the place of a page of an earlier run, and of
// an empty file; every other file stays unchanged.
#pragma once

#include <filesystem>

#include <Host/Agent.h>
#include <Report/Collector.h>
#include <Scenario/Scenario.h>

namespace CommandLine {

class ReportFile {
 public:
   // Throws Story::InputError when the file cannot be written. Nothing has run then.
   ReportFile( std::filesystem::path file, Scenario::Model const & scenario );

   // Makes the agent tell what a report needs.
   void configure( Host::AgentConfig & config ) const;
   // Is to be told every event of the run.
   Story::Observer & observer() { return collector_; }
   // Throws Story::InputError.
   void write() const;

 private:
   std::filesystem::path file_;
   Report::Collector collector_;
};

}  // namespace CommandLine
