#include <Loading/PluginModule.h>

#include <Loading/SharedObject.h>
#include <Story/InputError.h>

#include <dlfcn.h>

namespace Loading {

PluginModule::PluginModule( std::filesystem::path const & file ) {
   checkIsPlugin( file );
   std::size_t const before = Plugin::registeredMounters().size();
   // dlopen() looks for a name without a '/' among the system's libraries.
   handle_ = dlopen( std::filesystem::absolute( file ).c_str(), RTLD_NOW | RTLD_LOCAL );
   if ( !handle_ ) {
      throw Story::InputError( "the plug-in cannot be loaded: " + std::string( dlerror() ) );
   }
   auto const all = Plugin::registeredMounters();
   mounters_.assign( all.begin() + static_cast< std::ptrdiff_t >( before ), all.end() );
   if ( mounters_.empty() ) {
      dlclose( handle_ );
      throw Story::InputError( file.string() +
                               " registers no mounter, so it is no plug-in; a plug-in has "
                               "a Plugin::MounterRegistration for each of its mounters" );
   }
}

PluginModule::~PluginModule() {
   dlclose( handle_ );
}

}  // namespace Loading
