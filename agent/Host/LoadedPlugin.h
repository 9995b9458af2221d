// A plug-in at work: its shared object, and the mounters that the agent has created from it.
#pragma once

#include <filesystem>
#include <vector>

#include <Host/Environment.h>
#include <Host/PluginModule.h>

namespace Host {

// Its mounters are found below "plugins/", by their names. Its end destroys them, in the reverse
// order of their creation, and unloads the shared object.
//
// The environment must outlive it. Failures: InputError as PluginModule.
class LoadedPlugin {
 public:
   LoadedPlugin( std::filesystem::path const & file, std::string const & sliceId,
                 Environment & environment );
   LoadedPlugin( LoadedPlugin const & ) = delete;
   LoadedPlugin & operator=( LoadedPlugin const & ) = delete;
   ~LoadedPlugin();

   // Tells every mounter to start, in a turn of its own.
   void start();

   // Tells the observer which variant of its state machine the plug-in has built, once it has.
   void tellVariant();

 private:
   void mounterNew( Plugin::MounterRegistration const & registration, std::string const & sliceId );

   Environment & environment_;
   PluginModule module_;
   std::vector< Quelm::Ptr< Plugin::Mounter > > mounters_;
   Kiv::Watch< Vornal::DependencyPoint > pointWatch_;
   bool isVariantTold_ = false;
};

}  // namespace Host
