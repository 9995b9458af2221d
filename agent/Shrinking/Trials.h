// Tries candidates: runs them side by side, each in processes of its own, and compares how they
// end.
//
// A candidate that the reader refuses ends in its own way, and is never like another. A text is run
// once, however often it is asked for. After a signal that asks this process to end, no candidate
// holds, so that whoever asks comes to an end with the best that was found before.
//
// The caller has one thread. Failures: std::system_error when no process can be started.
#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <Process/EndRequest.h>
#include <Scenario/Root.h>
#include <Scenario/Scenario.h>
#include <Shrinking/Ending.h>
#include <Shrinking/Shrinker.h>

namespace Shrinking {

struct TrialsConfig {
   // Runs the scenario in a process of its own.
   std::function< Ending( Scenario::Model const & scenario ) > run;
   std::filesystem::path file;                // whose folder the paths of candidates begin in
   Scenario::Root root{};                     // of these paths
   std::size_t jobs = 1;                      // at a time
   std::function< void() > progress = [] {};  // is told now and then
};

class Trials {
 public:
   explicit Trials( TrialsConfig config ) : config_( std::move( config ) ) {}

   // How the document ends.
   Ending endingOf( Scenario::Yaml const & document );
   // From now on, a candidate holds when it ends like this.
   void lookFor( Ending ending ) { wanted_ = std::move( ending ); }
   std::optional< std::size_t > firstThatHolds( Candidates const & candidates );

   std::size_t runs() const { return runs_; }
   // The signal that asked this process to end; 0: none.
   int signal() const { return signal_; }

 private:
   struct Batch {
      std::vector< std::size_t > numbers;
      std::vector< std::string > texts;
   };

   Batch batchFrom( std::size_t & next, Candidates const & candidates ) const;
   std::vector< Ending > endingsOf( std::vector< std::string > const & texts );

   TrialsConfig config_;
   Process::EndRequest request_;
   Ending wanted_;
   std::set< std::string > failed_;  // the texts that do not hold
   std::size_t runs_ = 0;
   int signal_ = 0;
};

}  // namespace Shrinking
