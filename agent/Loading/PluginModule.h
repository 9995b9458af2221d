// A plug-in's shared object, opened in this process.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <Plugin/Mounter.h>

namespace Loading {

// Opening runs the module initialisation of the shared object and resolves all symbols; others see
// none of them. Closing removes its mounters and entity types, so no object of the plug-in may
// exist by then.
//
// Failures: Story::InputError when the file cannot be opened as a shared object, or registers no
// mounter. No code runs of a file that cannot be a plug-in (Loading/SharedObject.h).
class PluginModule {
 public:
   explicit PluginModule( std::filesystem::path const & file );
   PluginModule( PluginModule const & ) = delete;
   PluginModule & operator=( PluginModule const & ) = delete;
   ~PluginModule();

   // Its mounters, in the order of registration.
   std::vector< Plugin::MounterRegistration const * > const & mounters() const { return mounters_; }

 private:
   void * handle_ = nullptr;
   std::vector< Plugin::MounterRegistration const * > mounters_;
};

}  // namespace Loading
