#include <Steps/Context.h>

#include <Quelm/Error.h>
#include <Story/InputError.h>

namespace Steps {

std::string Context::placeOf( int line ) const {
   return sources.placeOf( line );
}

void Context::at( int line, std::function< void() > const & work ) const {
   try {
      work();
   } catch ( Quelm::Error const & error ) {
      throw Story::InputError( placeOf( line ) + ": " + error.what() );
   }
}

void Context::turnNew( int line, std::function< void() > turn ) const {
   activity.turnNew( [ this, line, turn = std::move( turn ) ] { at( line, turn ); } );
}

}  // namespace Steps
