// A plug-in's shared object, opened in this process.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <Plugin/Mounter.h>

namespace Loading {

// Opening runs the module initialisation of the shared object; closing takes its mounters and
// entity types away again, so that no object of the plug-in may be left by then. All symbols are
// resolved when it is opened, and none is visible to others.
//
// Failures: Story::InputError when the file cannot be opened as a shared object, or registers no
// mounter. Of a file that cannot be a plug-in (Loading/SharedObject.h) nothing is run.
class PluginModule {
 public:
   explicit PluginModule( std::filesystem::path const & file );
   PluginModule( PluginModule const & ) = delete;
   PluginModule & operator=( PluginModule const & ) = delete;
   ~PluginModule();

   // What it offers, in the order of registration.
   std::vector< Plugin::MounterRegistration const * > const & mounters() const { return mounters_; }

 private:
   void * handle_ = nullptr;
   std::vector< Plugin::MounterRegistration const * > mounters_;
};

}  // namespace Loading
