// Loads the plug-in and uses its entity type through the generic interface.
#include <Kiv/Entity.h>
#include <dlfcn.h>

#include <cstdlib>
#include <iostream>

int main() {
   if ( !dlopen( PLUG_IN, RTLD_NOW ) ) {
      std::cerr << dlerror() << '\n';
      return EXIT_FAILURE;
   }
   Kiv::Type const * const type = Kiv::typeNamed( "Consumer::Counter" );
   if ( !type ) {
      std::cerr << "The plug-in's entity type is not known.\n";
      return EXIT_FAILURE;
   }
   auto const counter = type->create()( "leaf1" );
   Kiv::Attribute const & frames = *type->find( "frames" );
   frames.textIs( *counter, "", "42" );
   std::cout << type->name() << ' ' << counter->identity() << ": " << frames.name() << " = "
             << frames.text( *counter, "" ) << '\n';
   return frames.text( *counter, "" ) == "42" ? EXIT_SUCCESS : EXIT_FAILURE;
}
