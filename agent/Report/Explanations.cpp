#include <Report/Explanations.h>

#include <algorithm>

namespace Report {

namespace {

using Story::Node;

Story::Cell const * valueOf( Node const & node, std::string_view name ) {
   auto const found =
      std::find_if( node.values.begin(), node.values.end(),
                    [ & ]( Story::NamedCell const & value ) { return value.name == name; } );
   return found == node.values.end() ? nullptr : &found->cell;
}

std::optional< U64 > numberIn( Node const & node, std::string_view name ) {
   auto const * const cell = valueOf( node, name );
   auto const * const number = cell ? std::get_if< U64 >( &cell->value ) : nullptr;
   return number ? std::optional( *number ) : std::nullopt;
}

// The group that the nodes below a lookup are about; nothing for another node.
std::optional< Vornal::TcamGroupAssignment > groupOf( Node const & lookup ) {
   if ( lookup.kind == "ingress-lookup" ) {
      return Vornal::kIfpLocalBiasGroup;
   }
   return lookup.kind == "egress-lookup" ? std::optional( Vornal::kEfpLocalBiasGroup )
                                         : std::nullopt;
}

std::optional< U32 > ruleOf( Node const & node, std::optional< Vornal::TcamGroupAssignment > group,
                             RuleHistory const & rules ) {
   auto const unit = numberIn( node, "unit" );
   auto const entry = numberIn( node, "entry" );
   return group && unit && entry
             ? rules.at( { static_cast< U16 >( *unit ), *group, static_cast< U32 >( *entry ) } )
             : std::nullopt;
}

}  // namespace

std::size_t Explanations::Hash::operator()( Tree const & tree ) const {
   std::size_t hash = tree.size();
   for ( U32 const number : tree ) {
      constexpr std::size_t kPrime = 0x100000001b3;
      hash = ( hash ^ number ) * kPrime;
   }
   return hash;
}

U32 Explanations::numberOf( Tree tree ) {
   auto const next = static_cast< U32 >( trees_.size() );
   auto const [ known, isNew ] = numbers_.try_emplace( tree, next );
   if ( isNew ) {
      trees_.push_back( std::move( tree ) );
   }
   return known->second;
}

U32 Explanations::add( Node const & frame, RuleHistory const & rules, Texts & texts ) {
   auto const addBelow = [ & ]( auto const & self, Node const & node,
                                std::optional< Vornal::TcamGroupAssignment > group ) -> U32 {
      auto const rule = ruleOf( node, group, rules );
      Tree tree{ texts.idOf( node.kind ), texts.idOf( node.text ), rule ? *rule + 1 : 0 };
      for ( Node const & child : node.children ) {
         tree.push_back( self( self, child, groupOf( node ) ) );
      }
      return numberOf( std::move( tree ) );
   };
   return addBelow( addBelow, frame, {} );
}

bool arrivesTwice( Node const & frame ) {
   return std::any_of( frame.children.begin(), frame.children.end(), []( Node const & child ) {
      auto const * const twice = child.kind == "verdict" ? valueOf( child, "twice" ) : nullptr;
      auto const * const places =
         twice ? std::get_if< std::vector< std::string > >( &twice->value ) : nullptr;
      return places && !places->empty();
   } );
}

}  // namespace Report
