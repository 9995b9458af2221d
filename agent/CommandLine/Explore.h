// `vornal explore`: tries every order of the events of an exploration, or every fault of the chip
// in the runs of scenarios.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <CommandLine/Command.h>
#include <CommandLine/ExploredFaults.h>
#include <CommandLine/Jobs.h>
#include <CommandLine/RunWords.h>
#include <Exploring/Catalogue.h>
#include <Exploring/KnownLimits.h>
#include <Exploring/Share.h>

namespace CommandLine {

class Explore final : public Command {
 public:
   void declare( CLI::App & app ) override;
   void readWords() override;
   Story::ExitCode perform( std::ostream & out ) override;

 private:
   bool isMerge() const { return words_.front() == "merge"; }
   Explored explored( int & signal ) const;
   FaultsAsked faults() const;
   Exploring::Findings explore( Exploring::Exploration const & exploration, std::size_t length,
                                int & signal ) const;
   Exploring::Findings merged( Exploring::Exploration const & exploration,
                               std::size_t length ) const;
   Host::AgentConfig config( std::filesystem::path const & file ) const;
   bool isAsInCatalogue( Exploring::Findings const & findings ) const;
   bool isKnown( Explored const & subject ) const;
   void prepare();

   // The exploration; or "merge", it, and files of results; or scenarios.
   std::vector< std::string > words_;
   std::optional< U32 > length_;
   std::string shardText_;
   Exploring::Shard shard_;
   std::filesystem::path results_;    // empty: none
   std::filesystem::path catalogue_;  // empty: none
   std::filesystem::path known_;      // a folder of scenarios; empty: none
   std::filesystem::path folder_;     // for scenarios; empty: none
   Jobs jobs_;
   RunWords run_;
   bool areFaults_ = false;
   std::optional< Exploring::Catalogue > expected_;
   Exploring::KnownLimits limits_;
   bool isJson_ = false;
};

}  // namespace CommandLine
