#include <Story/ProcessEvents.h>

#include <fmt/format.h>

#include <Story/Document.h>
#include <Story/JsonForms.h>

namespace Story {

std::string OutputLine::words() const {
   return "printed: " + text;
}

std::string Stopped::words() const {
   return isOverTime ? fmt::format(
                          "a turn did not come to its end, and the process of the plug-in was "
                          "ended by the {}; --turn-limit allows more",
                          reason )
                     : fmt::format( "the process of the plug-in ended with {}", reason );
}

// The writer adds the known limits.
void Stopped::addTo( Document & document ) const {
   document[ "assertion" ] = jsonOf( assertion );
   document[ "stop" ] = { { "reason", reason },
                          { "output", output },
                          { "traces", jsonOf( trace ) },
                          { "limits", Json::array() } };
}

std::string Interrupted::words() const {
   return fmt::format( "by {}", reason );
}

}  // namespace Story
