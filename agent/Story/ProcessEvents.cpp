#include <Story/ProcessEvents.h>

#include <fmt/format.h>

#include <Story/Document.h>
#include <Story/JsonForms.h>

namespace Story {

std::string OutputLine::words() const {
   return "printed: " + text;
}

bool Assertion::isIn( std::string_view name ) const {
   std::string const call = std::string( name ) + '(';
   for ( std::size_t at = function.find( call ); at != std::string::npos;
         at = function.find( call, at + 1 ) ) {
      constexpr std::string_view kBeforeNames = " :*&";
      if ( at == 0 || kBeforeNames.find( function[ at - 1 ] ) != std::string_view::npos ) {
         return true;
      }
   }
   return false;
}

bool Stopped::isByException( std::string_view text ) const {
   return !assertion && !output.empty() && output.back().ends_with( ": " + std::string( text ) );
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
                          { "asExpected", jsonOf( isAsExpected ) },
                          { "limits", Json::array() } };
}

std::string Interrupted::words() const {
   return fmt::format( "by {}", reason );
}

}  // namespace Story
