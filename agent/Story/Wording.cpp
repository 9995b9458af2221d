#include <Story/Wording.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <VornalTcam/EntryManager.h>

namespace Story {

namespace {

constexpr U64 kAllOnes = 0xffffffff;

std::string accessName( std::string const & flags ) {
   return flags.starts_with( 'w' ) ? "to write" : "to read";
}

std::string valueText( RuleField const & field, RuleValue const & value ) {
   bool const isHexadecimal = field.name == "SrcVxlanGport";
   std::string text = value.part.empty() ? "" : value.part + " ";
   text += isHexadecimal ? fmt::format( "{:#x}", value.data ) : fmt::format( "{}", value.data );
   if ( value.mask && *value.mask != kAllOnes ) {
      text += fmt::format( " mask {:#x}", *value.mask );
   }
   return text;
}

std::string fieldText( RuleField const & field ) {
   std::string text = field.name;
   for ( RuleValue const & value : field.values ) {
      text += " " + valueText( field, value );
   }
   if ( field.ports ) {
      text += field.ports->empty() ? " no port"
                                   : fmt::format( " ports {}", fmt::join( *field.ports, ", " ) );
   }
   return text;
}

std::string fieldsText( std::vector< RuleField > const & fields, std::string const & none ) {
   std::string text;
   for ( RuleField const & field : fields ) {
      text += ( text.empty() ? "" : " and " ) + fieldText( field );
   }
   return text.empty() ? none : text;
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
   return fmt::format( "asks for TCAM {}{}", groupName( event.group ),
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

std::string wordsOf( TraceLine const & event ) {
   return fmt::format( "trace {} {}: {}", event.handle, event.level, event.text );
}

std::string wordsOf( LogLine const & event ) {
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
                   event.unit, groupName( event.group ) );
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

std::string groupName( U32 group ) {
   switch ( group ) {
   case Vornal::kIfpLocalBiasGroup: return fmt::format( "ingress group {}", group );
   case Vornal::kEfpLocalBiasGroup: return fmt::format( "egress group {}", group );
   default: return fmt::format( "group {}", group );
   }
}

std::string headingOf( Rule const & rule ) {
   return fmt::format( "unit {}, {}, entry {}, \"{}\"", rule.key.unit, groupName( rule.key.group ),
                       rule.key.id, rule.name );
}

std::string contentOf( Rule const & rule ) {
   return fmt::format( "matches {}; does {}; {}{}", fieldsText( rule.qualifiers, "every frame" ),
                       fieldsText( rule.actions, "nothing" ),
                       rule.priority ? fmt::format( "priority {}", *rule.priority )
                                     : "the group's default priority",
                       rule.isWritten ? "" : "; staged only, not written to the chip" );
}

std::string counted( std::size_t count, std::string const & thing ) {
   return fmt::format( "{} {}{}", count, thing, count == 1 ? "" : "s" );
}

}  // namespace Story
