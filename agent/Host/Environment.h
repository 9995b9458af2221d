// A plug-in's surroundings on a switch: the activity, the chip, the state database, the entities
// that the agent shares with plug-ins, and the objects that a process has once. All of it exists
// before a plug-in is loaded and until it has been unloaded.
//
// Entities stand at their path in the database, and below "shared/" and "plugins/"
// (Peers/PublishedState.h has the list).
#pragma once

#include <memory>
#include <span>
#include <vector>

#include <Audit/Audit.h>
#include <Board/Board.h>
#include <Decorators/FailingSdk.h>
#include <Decorators/RecordingSdk.h>
#include <Expectations/Evidence.h>
#include <Expectations/Record.h>
#include <FeatureFiles/Reader.h>
#include <Host/ProcessWide.h>
#include <Kiv/Activity.h>
#include <Loading/LoadedPlugin.h>
#include <Peers/PublishedState.h>
#include <Questions/Context.h>
#include <Reporters/ChipReporter.h>
#include <Reporters/ClockReporter.h>
#include <StateDatabase/ChangeWatch.h>
#include <StateDatabase/Finder.h>
#include <Steps/Context.h>

namespace Host {

class Environment {
 public:
   // A switch as the scenario describes it; nothing is published on it yet. Scenario, ring memory
   // and observer must outlive it.
   Environment( Scenario::Model const & scenario, std::span< std::byte > ring,
                Story::Observer & observer );

   Story::Observer & observer() { return observer_; }
   Trace::Ring & ring() { return ring_; }
   Kiv::ActivityManager & activity() { return activity_; }
   Peers::PublishedState & published() { return published_; }
   Traffic::Injector & traffic() { return traffic_; }
   Steps::Context const & forSteps() const { return forSteps_; }
   FeatureFiles::Reader const & toggles() const { return toggles_; }
   Loading::Surroundings forPlugins() {
      return { database_, agentEntities_, activity_, pluginPoint(), observer_ };
   }
   StateDatabase::Finder const & finder() const { return finder_; }
   Questions::Context forQuestions() const {
      return { board_.units(), auditor_, traffic_, chronicle_, finder_ };
   }

 private:
   Quelm::Ptr< Vornal::DependencyPoint > const & pluginPoint() const {
      return published_.common()->sliceDependencyPoints()->evpnDependencyPoint();
   }
   void watch();

   Expectations::Record record_;
   Questions::Chronicle chronicle_;
   Story::Observers observers_;
   Kiv::ActivityManager activity_;
   Reporters::ClockReporter observer_;
   Reporters::ChipReporter reporter_;
   Chip::Faults faults_;
   Chip::Board board_;
   Chip::FailingSdk failing_;
   Chip::RecordingSdk sdk_;
   Trace::Ring ring_;
   FeatureFiles::Reader toggles_;
   ProcessWide processWide_;
   StateDatabase::Directory database_;
   StateDatabase::Directory agentEntities_;
   Peers::PublishedState published_;
   StateDatabase::Finder finder_;
   Traffic::Injector traffic_;
   Audit::Auditor auditor_;
   Expectations::Evidence evidence_;
   Steps::Context forSteps_;
   std::vector< std::unique_ptr< StateDatabase::ChangeWatch > > watches_;
   Kiv::Watch< Vornal::SubAgentDependencyPoints > subAgentWatch_;
};

}  // namespace Host
