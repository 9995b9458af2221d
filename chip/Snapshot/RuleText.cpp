#include <Snapshot/RuleText.h>

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Pipeline/FrameKind.h>
#include <SoftSdk/PortBitmap.h>

namespace Chip {

namespace {

constexpr char const * kAbsent = "absent";

std::string maskedText( std::string const & data, U32 mask ) {
   return mask == BCM_FIELD_EXACT_MATCH_MASK ? data : fmt::format( "{} mask {:#x}", data, mask );
}

std::string joined( std::vector< std::string > const & texts, char const * none ) {
   return texts.empty() ? none : fmt::format( "{}", fmt::join( texts, " and " ) );
}

}  // namespace

std::string groupText( Vornal::TcamGroupAssignment group ) {
   switch ( group ) {
   case Vornal::kIfpLocalBiasGroup: return fmt::format( "ingress group {}", group );
   case Vornal::kEfpLocalBiasGroup: return fmt::format( "egress group {}", group );
   default: return fmt::format( "group {}", group );
   }
}

std::string headingText( Rule const & rule ) {
   return fmt::format( "unit {}, {}, entry {}, \"{}\"", rule.key.unit, groupText( rule.key.group ),
                       rule.key.id, rule.name );
}

std::string bodyText( Rule const & rule, NameOf const & nameOf ) {
   return contentText( rule.content, nameOf ) +
          ( rule.isWritten ? "" : "; staged only, not written to the chip" );
}

std::string contentText( EntryContent const & content, NameOf const & nameOf ) {
   return fmt::format( "matches {}; does {}; {}", qualifiersText( content, nameOf ),
                       actionsText( content ), priorityText( content.priority ) );
}

std::string nameInChip( Qualifier qualifier, U32 number ) {
   if ( qualifier == Qualifier::PacketRes ) {
      for ( FrameKindRow const & row : kFrameKindTable ) {
         if ( row.packetResolution == number ) {
            std::string name( row.name );
            std::replace( name.begin(), name.end(), '-', ' ' );
            return name;
         }
      }
   }
   return {};
}

std::string qualifiersText( EntryContent const & content, NameOf const & nameOf ) {
   std::vector< std::string > texts;
   for ( Qualifier const qualifier : kQualifiers ) {
      if ( content[ qualifier ] ) {
         texts.push_back( partText( qualifier, content, nameOf ) );
      }
   }
   return joined( texts, "every frame" );
}

std::string actionsText( EntryContent const & content ) {
   std::vector< std::string > texts;
   for ( Action const action : kActions ) {
      if ( content[ action ] ) {
         texts.push_back( partText( action, content ) );
      }
   }
   return joined( texts, "nothing" );
}

std::string partText( Qualifier qualifier, EntryContent const & content, NameOf const & nameOf ) {
   return fmt::format( "{} {}", Chip::nameOf( qualifier ),
                       valueText( qualifier, content[ qualifier ], nameOf ) );
}

// An action without parameters is told by its name alone.
std::string partText( Action action, EntryContent const & content ) {
   std::string const name( nameOf( action ) );
   bool const isBare = rowOf( action ).parameters == ParametersUsed::None;
   return isBare ? name : name + " " + valueText( action, content[ action ] );
}

std::string valueText( Qualifier qualifier, std::optional< Match > const & match ) {
   if ( !match ) {
      return kAbsent;
   }
   QualifierRow const & row = rowOf( qualifier );
   std::string const data =
      row.isHexadecimal ? fmt::format( "{:#x}", match->data ) : std::to_string( match->data );
   std::string const text = maskedText( data, match->mask );
   return row.hasModule
             ? fmt::format( "module {} port {}",
                            maskedText( std::to_string( match->modId ), match->modIdMask ), text )
             : text;
}

std::string valueText( Qualifier qualifier, std::optional< Match > const & match,
                       NameOf const & nameOf ) {
   std::string const name = match ? nameOf( qualifier, match->data ) : "";
   return valueText( qualifier, match ) + ( name.empty() ? "" : " (" + name + ")" );
}

std::string valueText( Action action, std::optional< ActionParameters > const & parameters ) {
   if ( !parameters ) {
      return kAbsent;
   }
   switch ( rowOf( action ).parameters ) {
   case ParametersUsed::None: return "present";
   case ParametersUsed::Number: return std::to_string( parameters->param0 );
   case ParametersUsed::Ports: return portsText( parameters->ports );
   }
   return {};
}

std::string portsText( Brum::PerUnitBitmap const & ports ) {
   return ports.isEmpty() ? "no port"
                          : fmt::format( "ports {}", fmt::join( portsOf( ports ), ", " ) );
}

std::string priorityText( std::optional< U32 > const & priority ) {
   return priority ? fmt::format( "priority {}", *priority ) : "the group's default priority";
}

}  // namespace Chip
