#include <Rules/Drift.h>

#include <algorithm>
#include <stdexcept>

#include <Rules/Groups.h>

namespace Reference {

namespace {

char const * const kGport = "SrcVxlanGport";

// A change of the written copy alone.
struct Changing {
   Content & written;

   void operator()( PartFlips const & change ) const {
      auto const match = written.qualifiers.find( change.part );
      if ( match != written.qualifiers.end() ) {
         match->second.data ^= 1U;
         return;
      }
      auto & numbers = written.actions.at( change.part );
      numbers = { *numbers.begin() ^ 1U };
   }
   void operator()( MaskIs const & change ) const {
      written.qualifiers.at( change.qualifier ).mask = change.mask;
   }
   void operator()( PortsAre const & change ) const {
      written.actions.at( "EgressMask" ) = change.ports;
   }
   void operator()( PriorityIs const & change ) const { written.priority = change.priority; }
   void operator()( PartGoes const & change ) const {
      written.qualifiers.erase( change.part );
      written.qualifiers.erase( change.part + " module" );
      written.actions.erase( change.part );
   }
   template< typename Other > void operator()( Other const & ) const {}
};

}  // namespace

unsigned Groups::idOf( Group group, unsigned unit, RuleNamed const & named ) const {
   auto const found = std::find_if( rules_.begin(), rules_.end(), [ & ]( auto const & one ) {
      Rule const & rule = one.second;
      bool const isNamed = named.name.empty() ? rule.entry == named.entry
                                              : rule.name.find( named.name ) != std::string::npos;
      return rule.group == group && rule.unit == unit && isNamed;
   } );
   if ( found == rules_.end() ) {
      throw std::invalid_argument( "no rule '" + named.name + "' that could drift" );
   }
   return found->first;
}

void Groups::drifts( RuleDrifts const & drift ) {
   unsigned const id = idOf( drift.group, drift.unit, drift.rule );
   Rule & rule = rules_.at( id );
   if ( auto const * const fate = std::get_if< Fate >( &drift.change ) ) {
      meets( id, *fate );
   } else if ( auto const * const swap = std::get_if< GportsSwap >( &drift.change ) ) {
      Rule & other = rules_.at( idOf( drift.group, drift.unit, swap->with ) );
      std::swap( rule.written->qualifiers.at( kGport ), other.written->qualifiers.at( kGport ) );
   } else {
      std::visit( Changing{ *rule.written }, drift.change );
   }
}

void Groups::meets( unsigned id, Fate fate ) {
   Rule & rule = rules_.at( id );
   if ( fate == Fate::destroyed ) {
      rules_.erase( id );
   } else if ( fate == Fate::erased ) {
      rule.written.reset();
   } else {
      Content const content = *rule.written;
      Rule & copy = rules_.at( *add( rule.unit, rule.group, rule.name ) );
      copy.staged = content;
      copy.written = content;
   }
}

}  // namespace Reference
