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

// What a plug-in finds around it. Everything must outlive the plug-in.
struct Surroundings {
   StateDatabase::Directory & database;  // what other agents publish
   StateDatabase::Directory & own;       // what the agent shares with plug-ins, and has of them
   Kiv::ActivityManager & activity;
   Quelm::Ptr< Vornal::DependencyPoint > pluginPoint;  // which the plug-in marks
   Story::Observer & observer;
};

// Its mounters are found below "plugins/", by their names. Its end destroys them, in the reverse
// order of their creation, and unloads the shared object.
//
// Failures: InputError as PluginModule.
class LoadedPlugin {
 public:
   LoadedPlugin( std::filesystem::path const & file, std::string const & sliceId,
                 Surroundings const & around );
   LoadedPlugin( LoadedPlugin const & ) = delete;
   LoadedPlugin & operator=( LoadedPlugin const & ) = delete;
   ~LoadedPlugin();

   // Tells every mounter to start, in a turn of its own.
   void start();

   // Tells the observer which variant of its state machine the plug-in has built, once it has.
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
