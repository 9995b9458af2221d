#include <Story/Codec.h>

#include <Story/EventForms.h>

namespace Story {

std::string encoded( Event const & event ) {
   std::string bytes;
   encodeInto( bytes, event );
   return bytes;
}

void encodeInto( std::string & bytes, Event const & event ) {
   Binary::Out out( bytes );
   Binary::write( out, event );
}

Event decoded( std::string_view bytes ) {
   Binary::In in( bytes );
   Event event;
   Binary::read( in, event );
   in.expectEnd();
   return event;
}

}  // namespace Story
