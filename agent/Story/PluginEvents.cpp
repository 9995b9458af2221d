#include <Story/PluginEvents.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Snapshot/RuleText.h>
#include <Story/Document.h>
#include <Story/JsonForms.h>

namespace Story {

// --- Loading

std::string PluginLoaded::words() const {
   return fmt::format( "plug-in {} loaded, it offers {}", file, fmt::join( mounters, ", " ) );
}

void PluginLoaded::addTo( Document & document ) const {
   document.plugin()[ "file" ] = file;
   document.plugin()[ "mounters" ] = mounters;
}

std::string MountAsked::words() const {
   return fmt::format( "mounts {} as {}, {}", path, type, isToWrite() ? "to write" : "to read" );
}

void MountAsked::addTo( Document & document ) const {
   document.plugin()[ "mounts" ].push_back( jsonOf( *this ) );
}

std::string MountsDone::words() const {
   std::string text = fmt::format( "mounts {}", status );
   for ( std::string const & problem : problems ) {
      text += "; " + problem;
   }
   return text;
}

void MountsDone::addTo( Document & document ) const {
   document.plugin()[ "mountStatus" ] = status;
   document.plugin()[ "mountProblems" ] = problems;
}

// --- Requests

std::string EntityLookedUp::words() const {
   return type.empty() ? fmt::format( "looks up {}: nobody publishes it", path )
                       : fmt::format( "takes {} ({})", path, type );
}

void EntityLookedUp::addTo( Document & document ) const {
   document.plugin()[ "lookups" ].push_back( jsonOf( *this ) );
}

std::string SharedEntityAsked::words() const {
   return type.empty() ? fmt::format( "asks the agent for \"{}\": there is none", name )
                       : fmt::format( "takes the agent's \"{}\" ({})", name, type );
}

void SharedEntityAsked::addTo( Document & document ) const {
   document.plugin()[ "sharedEntities" ].push_back( jsonOf( *this ) );
}

std::string TcamGroupAsked::words() const {
   return fmt::format( "asks for TCAM {}{}", Chip::groupText( group ),
                       isThere ? "" : ": this switch has none" );
}

void TcamGroupAsked::addTo( Document & document ) const {
   document.plugin()[ "tcamGroups" ].push_back( group );
}

std::string VariantChosen::words() const {
   return fmt::format( "variant {}: {}", variant, type );
}

void VariantChosen::addTo( Document & document ) const {
   document[ "variant" ] = variant;
}

std::string DependencyPointReady::words() const {
   return isOfPlugin ? fmt::format( "marks its own dependency point \"{}\" as ready", point )
                     : fmt::format( "dependency point \"{}\" is ready", point );
}

void DependencyPointReady::addTo( Document & document ) const {
   if ( isOfPlugin ) {
      document.plugin()[ "ready" ] = true;
   }
}

// --- Traces and log lines

std::string Traced::words() const {
   return fmt::format( "trace {} {}: {}", handle, level, text );
}

void Traced::addTo( Document & document ) const {
   document.count( "traceLines" );
   if ( document.hasRoom( "traces" ) ) {
      document.step()[ "traces" ].push_back( jsonOf( *this ) );
   }
}

std::string Logged::words() const {
   return fmt::format( "log {}", line );
}

void Logged::addTo( Document & document ) const {
   document.count( "logLines" );
   if ( document.hasRoom( "log" ) ) {
      document.step()[ "log" ].push_back( line );
      document[ "log" ].push_back( document.withStep( jsonOf( *this ) ) );
   }
}

// --- Verification

std::string PluginPass::words() const {
   switch ( state ) {
   case State::Begins: return "the plug-in's own pass begins";
   case State::Held: return "the plug-in's own pass held";
   case State::Skipped: return "the plug-in's own pass was skipped: " + reason;
   case State::Absent: break;
   }
   return "the plug-in has no state machine yet, and no pass of its own";
}

void PluginPass::addTo( Document & document ) const {
   Json & pass = document.step()[ "pluginPass" ];
   switch ( state ) {
   case State::Begins: pass = "stopped"; break;
   case State::Held: pass = "held"; break;
   case State::Skipped: pass = "skipped"; break;
   case State::Absent: pass = "absent"; break;
   }
}

}  // namespace Story
