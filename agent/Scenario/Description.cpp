#include <Scenario/Description.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Scenario/Parts.h>

namespace Scenario {

namespace {

using Quelm::textOf;

std::string at( AttributeAt const & place ) {
   return place.entity.stringValue() + ' ' + place.attribute +
          ( place.key.empty() ? "" : '[' + place.key + ']' );
}

// --- what is published or withdrawn

std::string describe( InterfacePort const & what, bool isWithdrawn ) {
   return what.intf.stringValue() + ( isWithdrawn ? "" : " on " + textOf( what.port ) );
}

std::string describe( PortChannelMember const & what, bool isWithdrawn ) {
   return fmt::format( "{} {} {}", textOf( what.member ), isWithdrawn ? "from" : "in",
                       textOf( what.portChannel ) );
}

std::string describe( Segment const & what, bool ) {
   return "segment " + what.intf.stringValue();
}

std::string describe( SegmentVtep const & what, bool isWithdrawn ) {
   return fmt::format( "VTEP {} {} segment {}", textOf( what.vtep ), isWithdrawn ? "from" : "on",
                       textOf( what.intf ) );
}

std::string describe( VtepVirtualPort const & what, bool isWithdrawn ) {
   return isWithdrawn
             ? "virtual port of VTEP " + what.vtep.stringValue()
             : fmt::format( "virtual port {} of VTEP {}", what.virtualPort, textOf( what.vtep ) );
}

std::string describe( TunnelInterface const & what, bool ) {
   return "tunnel interface " + what.intf.stringValue();
}

std::string describe( VrfVni const & what, bool isWithdrawn ) {
   std::string const place = what.vrf.stringValue() + " on " + what.intf.stringValue();
   return isWithdrawn ? "VNI of VRF " + place : "VNI " + textOf( what.vni ) + " of VRF " + place;
}

std::string describe( ClassIdRequest const & what, bool ) {
   return "request of a class id for VTEP " + what.vtep.stringValue();
}

std::string describe( ClassIdGrant const & what, bool isWithdrawn ) {
   return isWithdrawn
             ? "class id of VTEP " + what.vtep.stringValue()
             : fmt::format( "class id {} for VTEP {}", what.id.value(), textOf( what.vtep ) );
}

std::string describe( std::vector< Change > const & changes, bool isWithdrawn ) {
   std::string text;
   for ( Change const & change : changes ) {
      text += ( text.empty() ? " " : ", " ) + description( change.what, isWithdrawn );
   }
   return text;
}

// --- expectations

std::string counted( U32 count, std::string const & thing ) {
   return fmt::format( "{} {}{}", count, thing, count == 1 ? "" : "s" );
}

std::string times( std::optional< U32 > const & count ) {
   if ( !count ) {
      return "";
   }
   return *count == 1 ? " once" : fmt::format( " {} times", *count );
}

std::string describe( AttributeEquals const & what ) {
   return at( what.at ) + " equals " + what.value;
}

std::string describe( AttributeHas const & what ) {
   return fmt::format( "{} {} {} {}", what.at.entity.stringValue(), what.at.attribute,
                       what.isPresent ? "has" : "lacks", what.at.key );
}

std::string describe( PluginReady const & what ) {
   return what.isReady ? "plug-in ready" : "plug-in waiting";
}

std::string describe( TcamGroupsAskedFor const & what ) {
   std::string text;
   for ( TcamGroup const group : what.groups ) {
      text += ( text.empty() ? " " : ", " ) + std::string( nameOf( group ) );
   }
   return "TCAM groups asked for:" + ( text.empty() ? " none" : text );
}

std::string describe( std::vector< RuleFieldWanted > const & fields ) {
   std::string text;
   for ( RuleFieldWanted const & field : fields ) {
      text += ( text.empty() ? "" : " and " ) + field.name;
      if ( field.numbers ) {
         text += field.numbers->empty() ? " nothing"
                                        : fmt::format( " {}", fmt::join( *field.numbers, ", " ) );
      }
   }
   return text;
}

std::string describePriority( RulesLike const & what ) {
   auto const * const number = std::get_if< U32 >( &*what.priority );
   return number ? fmt::format( "priority {}", *number ) : "the default priority";
}

std::string describe( RulesLike const & what ) {
   std::string text =
      fmt::format( "{} in group {}{}",
                   what.count ? counted( *what.count, "rule" ) : "one or more rules",
                   nameOf( what.group ),
                   what.unit ? fmt::format( " of unit {}", *what.unit ) : "" );
   auto const add = [ & ]( bool isAsked, std::string const & more ) {
      text += isAsked ? ", " + more : "";
   };
   add( !what.name.empty(), "named \"" + what.name + '"' );
   add( !what.qualifiers.empty(), "matching " + describe( what.qualifiers ) );
   add( !what.actions.empty(), "doing " + describe( what.actions ) );
   add( what.doesNothing, "doing nothing" );
   add( what.priority.has_value(), what.priority ? describePriority( what ) : "" );
   add( what.isWritten.has_value(), what.isWritten.value_or( true ) ? "written" : "staged only" );
   return text;
}

std::string describe( std::vector< FrameTarget > const & targets ) {
   std::string text;
   for ( FrameTarget const & target : targets ) {
      text += ( text.empty() ? "" : ", " ) +
              std::visit( []( auto const & one ) { return textOf( one ); }, target );
   }
   return text;
}

std::string describe( FramesLike const & what ) {
   std::string text;
   for ( Chip::FrameKind const kind : what.kinds ) {
      text += std::string( text.empty() ? "" : " or " ) + std::string( Chip::nameOf( kind ) );
   }
   text += text.empty() ? "frames" : " frames";
   auto const add = [ & ]( bool isAsked, std::string const & more ) {
      text += isAsked ? " " + more : "";
   };
   add( what.from.has_value(), "from VTEP " + textOf( what.from.value_or( Pelk::IpGenAddr() ) ) );
   add( !what.reach.empty(), "reach " + describe( what.reach ) );
   add( !what.neverReach.empty(), "never reach " + describe( what.neverReach ) );
   for ( auto const & [ intf, verdict ] : what.verdicts ) {
      add( true, fmt::format( "are {} at {}", Chip::nameOf( verdict ), textOf( intf ) ) );
   }
   add( what.dropped.has_value(),
        what.dropped ? fmt::format( "are dropped as {}", Chip::nameOf( *what.dropped ) ) : "" );
   return text + ( what.count ? fmt::format( ", {} of them", *what.count ) : "" );
}

std::string describe( LogLine const & what ) {
   return "log line \"" + what.text + '"' + times( what.times );
}

std::string describe( TraceLine const & what ) {
   return fmt::format( "trace line of {}{} \"{}\"{}", what.handle,
                       what.level ? fmt::format( " at level {}", *what.level ) : "", what.text,
                       times( what.times ) );
}

std::string describe( InStep const & what ) {
   return what.isInStep ? "an audit finds the rules in step" : "an audit finds differences";
}

std::string describe( DifferencesLike const & what ) {
   if ( what.kind ) {
      return fmt::format( "an audit finds {} {}",
                          what.count ? std::to_string( *what.count ) : "some",
                          nameOf( *what.kind ) );
   }
   return "an audit finds " +
          ( what.count ? counted( *what.count, "difference" ) : "some differences" );
}

// --- steps

std::string describe( Note const & step ) {
   return step.text;
}

std::string describe( Ready const & step ) {
   return "ready subagents::" + step.point;
}

std::string describe( Publish const & step ) {
   return "publish" + describe( step.changes, false );
}

std::string describe( Withdraw const & step ) {
   return "withdraw" + describe( step.changes, true );
}

std::string describe( SegmentReplaced const & what ) {
   std::vector< std::string > vteps;
   for ( Pelk::IpGenAddr const & vtep : what.vteps ) {
      vteps.push_back( textOf( vtep ) );
   }
   return fmt::format( "segment {} with {}{}", textOf( what.intf ),
                       vteps.empty() ? "no VTEP" : "VTEP ", fmt::join( vteps, " and " ) );
}

std::string describe( TunnelInterfaceReplaced const & what ) {
   std::vector< std::string > vnis;
   for ( VrfVni const & vrf : what.vnis ) {
      vnis.push_back( fmt::format( "VNI {} of VRF {}", textOf( vrf.vni ), vrf.vrf.stringValue() ) );
   }
   return fmt::format( "tunnel interface {} with {}{}", textOf( what.intf ),
                       vnis.empty() ? "no VNI" : "", fmt::join( vnis, " and " ) );
}

std::string describe( Replace const & step ) {
   std::vector< std::string > texts;
   for ( Replacement const & one : step.replacements ) {
      texts.push_back(
         std::visit( []( auto const & what ) { return describe( what ); }, one.what ) );
   }
   return fmt::format( "replace by {}", fmt::join( texts, ", " ) );
}

std::string describe( Set const & step ) {
   return "set " + at( step.at ) + ( step.value.empty() ? "" : " to " + step.value );
}

std::string describe( Delete const & step ) {
   return "delete " + at( step.at );
}

std::string describe( Call const & step ) {
   std::string arguments;
   for ( std::string const & argument : step.arguments ) {
      arguments += ( arguments.empty() ? " " : ", " ) + argument;
   }
   return fmt::format( "call {} {}({}{}", step.entity.stringValue(), step.operation, arguments,
                       arguments.empty() ? ")" : " )" );
}

std::string describe( Turn const & step ) {
   std::vector< std::string > texts;
   for ( Turn::PlacedPart const & one : step.parts ) {
      texts.push_back(
         std::visit( []( auto const & part ) { return describe( part ); }, one.part ) );
   }
   return fmt::format( "in one turn: {}", fmt::join( texts, "; " ) );
}

std::string describe( FailCall const & step ) {
   return fmt::format( "call {} of {} from now on is not made and gives code {}", step.number,
                       step.operation, step.code );
}

std::string describe( ForeignEntries const & step ) {
   return fmt::format( "others hold {} of group {} on {}",
                       step.count == 1 ? "1 entry" : fmt::format( "{} entries", step.count ),
                       nameOf( step.group ),
                       step.unit ? fmt::format( "unit {}", *step.unit ) : "each unit" );
}

std::string describe( ClassIdAllocator const & step ) {
   return step.isPaused ? "the class-id allocator pauses" : "the class-id allocator serves";
}

std::string describe( Dump const & step ) {
   auto const * const path = std::get_if< StateDatabase::EntityPath >( &step.what );
   return "dump " + ( path ? path->stringValue() : "rules" );
}

std::string describe( Frame const & step ) {
   auto const & outer = step.fields.outer;
   std::string const from =
      outer ? fmt::format( "from VTEP {} in VNI {}", textOf( outer->sourceVtep ), outer->vni )
            : "on " + textOf( *step.on );
   std::string const addresses = step.fields.sourceIp && step.fields.destinationIp
                                    ? fmt::format( ", {} to {}", textOf( *step.fields.sourceIp ),
                                                   textOf( *step.fields.destinationIp ) )
                                    : "";
   return fmt::format( "a frame {}: {} to {}{}", from, textOf( step.fields.source ),
                       textOf( step.fields.destination ), addresses );
}

std::string describe( Capture const & step ) {
   return fmt::format( "the frames of {} on {}", step.file.filename().string(), textOf( step.on ) );
}

std::string describe( DesignatedForwarder const & step ) {
   std::string text;
   for ( auto const & [ intf, isDesignated ] : step.isDesignated ) {
      text += fmt::format( "{}{} is {}designated", text.empty() ? "" : ", ", textOf( intf ),
                           isDesignated ? "" : "not " );
   }
   return text;
}

std::string describe( RuleNamed const & rule ) {
   auto const * const id = std::get_if< U32 >( &rule );
   return id ? fmt::format( "entry {}", *id )
             : fmt::format( "the rule named \"{}\"", std::get< std::string >( rule ) );
}

std::string describe( RulePart const & part ) {
   return std::visit( []( auto one ) { return std::string( nameOf( one ) ); }, part );
}

std::string describe( PartFlips const & change ) {
   return "flips a bit of " + describe( change.part );
}

std::string describe( QualifierMaskIs const & change ) {
   return fmt::format( "gets mask {:#x} of {}", change.mask, nameOf( change.qualifier ) );
}

std::string describe( EgressMaskIs const & change ) {
   return "masks ports " + Quelm::textOf( change.ports );
}

std::string describe( PriorityIs const & change ) {
   return change.priority ? fmt::format( "gets priority {}", *change.priority )
                          : "gets the default priority";
}

std::string describe( PartGoes const & change ) {
   return "loses " + describe( change.part );
}

std::string describe( EntryFate const & change ) {
   switch ( change ) {
   case EntryFate::erased: return "is erased from the hardware";
   case EntryFate::destroyed: return "is destroyed";
   case EntryFate::copied: return "is copied";
   }
   return {};
}

std::string describe( GportsSwap const & change ) {
   return "swaps its gport with " + describe( change.with );
}

std::string describe( Drift const & step ) {
   return fmt::format( "drift: {} of group {} on unit {} {}", describe( step.rule ),
                       nameOf( step.group ), step.unit,
                       std::visit( []( auto const & change ) { return describe( change ); },
                                   step.change ) );
}

std::string describe( Verify const & step ) {
   switch ( step ) {
   case Verify::audit: return "verify by the audit";
   case Verify::plugIn: return "verify by the plug-in's own pass";
   case Verify::both: return "verify by the audit and the plug-in's own pass";
   }
   return {};
}

std::string describe( Expect const & step ) {
   std::string text;
   for ( Expectation const & expectation : step.expectations ) {
      text += ( text.empty() ? " " : ", " ) + description( expectation.what );
   }
   return "expect" + text;
}

}  // namespace

std::string_view nameOf( Variant variant ) {
   return variants().nameOf( variant );
}

std::string_view nameOf( TcamGroup group ) {
   return tcamGroups().nameOf( group );
}

std::string description( Published const & published, bool isWithdrawn ) {
   return std::visit( [ = ]( auto const & what ) { return describe( what, isWithdrawn ); },
                      published );
}

std::string description( Expected const & expected ) {
   return std::visit( []( auto const & what ) { return describe( what ); }, expected );
}

std::string description( Action const & action ) {
   return std::visit( []( auto const & what ) { return describe( what ); }, action );
}

}  // namespace Scenario
