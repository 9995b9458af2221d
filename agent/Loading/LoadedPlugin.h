// A plug-in at work: its shared object, and the mounters that the agent has created from it.
#pragma once

#include <filesystem>
#include <vector>

#include <Kiv/Activity.h>
#include <Kiv/Reactor.h>
#include <Loading/PluginModule.h>
#include <StateDatabase/Directory.h>
#include <Story/Observer.h>
#include <Vornal/Dependency.h>

namespace Loading {

// The objects that a plug-in works with. All must outlive it.
struct Surroundings {
   StateDatabase::Directory & database;       // other agents publish here
   StateDatabase::Directory & agentEntities;  // shared entities, and the mounters of plug-ins
   Kiv::ActivityManager & activity;
   Quelm::Ptr< Vornal::DependencyPoint > pluginPoint;  // marked by the plug-in
   Story::Observer & observer;
};

// The directory holds the mounters below "plugins/", by their names. The destructor destroys them
// in the reverse order of their creation and unloads the shared object.
//
// Failures: InputError as PluginModule.
class LoadedPlugin {
 public:
   LoadedPlugin( std::filesystem::path const & file, std::string const & sliceId,
                 Surroundings const & around );
   LoadedPlugin( LoadedPlugin const & ) = delete;
   LoadedPlugin & operator=( LoadedPlugin const & ) = delete;
   ~LoadedPlugin();

   // Queues a turn for each mounter, in which the mounter starts.
   void start();

   // Tells the observer which variant of its state machine the plug-in has built, once it has built
   // one.
   void tellVariant();

 private:
   void mounterNew( Plugin::MounterRegistration const & registration, std::string const & sliceId );

   Surroundings around_;
   PluginModule module_;
   std::vector< Quelm::Ptr< Plugin::Mounter > > mounters_;
   Kiv::Watch< Vornal::DependencyPoint > pointWatch_;
   bool isVariantTold_ = false;
};

}  // namespace Loading
