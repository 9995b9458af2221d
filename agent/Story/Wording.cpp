#include <Story/Wording.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Snapshot/RuleText.h>

namespace Story {

namespace {

std::string accessName( std::string const & flags ) {
   return flags.starts_with( 'w' ) ? "to write" : "to read";
}

}  // namespace

std::string wordsOf( PluginLoaded const & event ) {
   return fmt::format( "plug-in {} loaded, it offers {}", event.file,
                       fmt::join( event.mounters, ", " ) );
}

std::string wordsOf( MountAsked const & event ) {
   return fmt::format( "mounts {} as {}, {}", event.path, event.type, accessName( event.flags ) );
}

std::string wordsOf( MountsDone const & event ) {
   std::string text = fmt::format( "mounts {}", event.status );
   for ( std::string const & problem : event.problems ) {
      text += "; " + problem;
   }
   return text;
}

std::string wordsOf( EntityLookedUp const & event ) {
   return event.type.empty() ? fmt::format( "looks up {}: nobody publishes it", event.path )
                             : fmt::format( "takes {} ({})", event.path, event.type );
}

std::string wordsOf( SharedEntityAsked const & event ) {
   return event.type.empty()
             ? fmt::format( "asks the agent for \"{}\": there is none", event.name )
             : fmt::format( "takes the agent's \"{}\" ({})", event.name, event.type );
}

std::string wordsOf( TcamGroupAsked const & event ) {
   return fmt::format( "asks for TCAM {}{}", Chip::groupText( event.group ),
                       event.isThere ? "" : ": this switch has none" );
}

std::string wordsOf( VariantChosen const & event ) {
   return fmt::format( "variant {}: {}", event.variant, event.type );
}

std::string wordsOf( DependencyPointReady const & event ) {
   return event.isOfPlugin
             ? fmt::format( "marks its own dependency point \"{}\" as ready", event.point )
             : fmt::format( "dependency point \"{}\" is ready", event.point );
}

std::string wordsOf( PublishedChange const & event ) {
   std::string const place =
      event.path + "/" + event.attribute + ( event.key.empty() ? "" : "[" + event.key + "]" );
   return event.to ? fmt::format( "writes {}: {}", place, *event.to )
                   : fmt::format( "deletes {}", place );
}

std::string wordsOf( Traced const & event ) {
   return fmt::format( "trace {} {}: {}", event.handle, event.level, event.text );
}

std::string wordsOf( Logged const & event ) {
   return fmt::format( "log {}", event.line );
}

std::string wordsOf( ExpectationChecked const & event ) {
   return event.held
             ? fmt::format( "as expected: {}", event.text )
             : fmt::format( "NOT as expected: {}; {} ({})", event.text, event.found, event.place );
}

std::string wordsOf( ForeignEntriesAre const & event ) {
   std::string const held =
      fmt::format( "others hold {} of unit {}, {}",
                   event.held == 1 ? "1 entry" : fmt::format( "{} entries", event.held ),
                   event.unit, Chip::groupText( event.group ) );
   return event.held == event.asked
             ? held
             : held + fmt::format( "; there is no room for the {} they ask for", event.asked );
}

std::string wordsOf( OutputLine const & event ) {
   return "printed: " + event.text;
}

std::string wordsOf( PluginPass const & event ) {
   switch ( event.state ) {
   case PluginPass::State::Begins: return "the plug-in's own pass begins";
   case PluginPass::State::Held: return "the plug-in's own pass held";
   case PluginPass::State::Skipped: return "the plug-in's own pass was skipped: " + event.reason;
   case PluginPass::State::Absent: break;
   }
   return "the plug-in has no state machine yet, and no pass of its own";
}

std::string wordsOf( Stopped const & event ) {
   return event.isOverTime
             ? fmt::format(
                  "a turn did not come to its end, and the process of the plug-in was ended by the "
                  "{}; --turn-limit allows more",
                  event.reason )
             : fmt::format( "the process of the plug-in ended with {}", event.reason );
}

std::string wordsOf( Interrupted const & event ) {
   return fmt::format( "by {}", event.reason );
}

std::string nameOf( std::optional< StepBegins > const & step ) {
   return step ? nameOf( *step ) : "the beginning";
}

std::string nameOf( StepBegins const & step ) {
   switch ( step.kind ) {
   case StepKind::StartUp: return "start-up";
   case StepKind::Verification: return "verification";
   case StepKind::Teardown: return "teardown";
   case StepKind::Scenario: break;
   }
   return fmt::format( "step {}", step.number );
}

std::string counted( std::size_t count, std::string const & thing ) {
   return fmt::format( "{} {}{}", count, thing, count == 1 ? "" : "s" );
}

}  // namespace Story
