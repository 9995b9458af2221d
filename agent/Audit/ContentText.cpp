#include <Audit/ContentText.h>

#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace Audit {

namespace {

constexpr char const * kAbsent = "absent";

std::string maskedText( std::string const & data, U32 mask ) {
   return mask == BCM_FIELD_EXACT_MATCH_MASK ? data : fmt::format( "{} mask {:#x}", data, mask );
}

// "NAME TEXT" of each part that the content has.
template< typename Parts >
std::string partsText( Chip::EntryContent const & content, Parts const & parts,
                       char const * none ) {
   std::vector< std::string > texts;
   for ( auto const part : parts ) {
      if ( content[ part ] ) {
         texts.push_back( fmt::format( "{} {}", nameOf( part ), textOf( part, content[ part ] ) ) );
      }
   }
   return texts.empty() ? none : fmt::format( "{}", fmt::join( texts, " and " ) );
}

}  // namespace

std::string textOf( Chip::Qualifier qualifier, std::optional< Chip::Match > const & match ) {
   if ( !match ) {
      return kAbsent;
   }
   switch ( qualifier ) {
   case Chip::Qualifier::DstPort:
      return fmt::format( "module {} port {}",
                          maskedText( std::to_string( match->modId ), match->modIdMask ),
                          maskedText( std::to_string( match->data ), match->mask ) );
   case Chip::Qualifier::SrcVxlanGport:
      return maskedText( fmt::format( "{:#x}", match->data ), match->mask );
   default: return maskedText( std::to_string( match->data ), match->mask );
   }
}

std::string textOf( Chip::Action action,
                    std::optional< Chip::ActionParameters > const & parameters ) {
   if ( !parameters ) {
      return kAbsent;
   }
   switch ( action ) {
   case Chip::Action::EgressMask: return textOf( parameters->ports );
   case Chip::Action::Drop: return "present";
   default: return std::to_string( parameters->param0 );
   }
}

std::string priorityText( std::optional< U32 > const & priority ) {
   return priority ? fmt::format( "priority {}", *priority ) : "the group's default priority";
}

std::string textOf( Brum::PerUnitBitmap const & ports ) {
   std::vector< U32 > numbers;
   for ( U32 port = 0; port < Brum::PerUnitBitmap::kBits; ++port ) {
      if ( ports.bit( port ) ) {
         numbers.push_back( port );
      }
   }
   return numbers.empty() ? "no port" : fmt::format( "ports {}", fmt::join( numbers, ", " ) );
}

std::string textOf( Chip::EntryContent const & content ) {
   return fmt::format( "matches {}; does {}; {}",
                       partsText( content, Chip::kQualifiers, "every frame" ),
                       partsText( content, Chip::kActions, "nothing" ),
                       priorityText( content.priority ) );
}

}  // namespace Audit
