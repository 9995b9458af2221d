#include <CommandLine/PluginFile.h>

#include <array>

#include <Story/InputError.h>

namespace CommandLine {

namespace fs = std::filesystem;

fs::path pluginFile( std::optional< fs::path > const & asked ) {
   std::error_code error;
   if ( asked ) {
      if ( !fs::exists( *asked, error ) ) {
         throw Story::InputError( asked->string() +
                                  ( error ? ": the file cannot be reached (" + error.message() + ")"
                                          : ": there is no such file" ) +
                                  "; --plugin takes the plug-in's shared object" );
      }
      return *asked;
   }
   fs::path const folder = fs::read_symlink( "/proc/self/exe" ).parent_path();
   std::array const candidates{ folder / "VornalEvpn.so",
                                folder.parent_path() / "lib/vornal/plugins/VornalEvpn.so" };
   for ( fs::path const & candidate : candidates ) {
      if ( fs::exists( candidate, error ) ) {
         return candidate;
      }
   }
   throw Story::InputError( "there is no plug-in: neither " + candidates[ 0 ].string() + " nor " +
                            candidates[ 1 ].string() + " exists; name one by --plugin" );
}

}  // namespace CommandLine
