#include <Rules/Groups.h>

#include <algorithm>

namespace Reference {

namespace {

std::string numberOf( Group group ) {
   return group == Group::ingress ? "157" : "45";
}

}  // namespace

std::string textOf( std::set< unsigned > const & ports ) {
   std::string text;
   for ( unsigned const port : ports ) {
      text += ( text.empty() ? "" : " " ) + std::to_string( port );
   }
   return text;
}

// --- Rules

RuleId Groups::obtain( unsigned unit, Group group, std::string const & name ) {
   bool const isThereRoom = hasRoom( unit, group );
   calls_.push_back( { "getEntry", unit, isThereRoom ? name : "", {} } );
   calls_.back().values = { { "group", numberOf( group ) }, { "name", name } };
   if ( !isThereRoom ) {
      exhaustedIs( { group, unit }, true );
      return std::nullopt;
   }
   rules_[ ++lastId_ ] = { unit, group, name };
   return lastId_;
}

void Groups::match( RuleId id, std::string const & qualifier, unsigned data, unsigned mask ) {
   Rule & rule = rules_.at( *id );
   rule.qualifiers[ qualifier ] = under( data, mask );
   std::map< std::string, std::string > values{ { "data", std::to_string( data ) },
                                                { "mask", std::to_string( mask ) } };
   if ( qualifier == "SrcVxlanGport" ) {
      values = { { "gport", std::to_string( data ) } };
   } else if ( qualifier == "IpType" ) {
      values = { { "ipType", std::to_string( data ) } };
   }
   call( ( "bcm_field_qualify_" + qualifier ).c_str(), rule, values );
}

void Groups::matchPort( RuleId id, unsigned module, unsigned port ) {
   Rule & rule = rules_.at( *id );
   rule.qualifiers[ "DstPort" ] =
      "module " + under( module, kExact ) + " port " + under( port, kExact );
   std::string const mask = std::to_string( kExact );
   call( "bcm_field_qualify_DstPort", rule,
         { { "modId", std::to_string( module ) },
           { "modIdMask", mask },
           { "port", std::to_string( port ) },
           { "portMask", mask } } );
}

void Groups::addAction( RuleId id, std::string const & action, unsigned number ) {
   Rule & rule = rules_.at( *id );
   rule.actions[ action ] = action == "Drop" ? "" : std::to_string( number );
   call( "bcm_field_action_add", rule,
         { { "action", action }, { "param0", std::to_string( number ) }, { "param1", "0" } } );
}

void Groups::addMask( RuleId id, std::set< unsigned > const & ports ) {
   Rule & rule = rules_.at( *id );
   rule.actions[ "EgressMask" ] = textOf( ports );
   call( "addEgressMaskAction", rule,
         { { "group", numberOf( rule.group ) }, { "ports", textOf( ports ) } } );
}

void Groups::priorityIs( RuleId id, unsigned priority ) {
   Rule & rule = rules_.at( *id );
   rule.priority = std::to_string( priority );
   call( "setPriorityForEntry", rule,
         { { "group", numberOf( rule.group ) }, { "priority", rule.priority } } );
}

void Groups::install( RuleId id ) {
   Rule & rule = rules_.at( *id );
   rule.isWritten = true;
   call( "installEntry", rule, { { "group", numberOf( rule.group ) } } );
}

void Groups::maskIs( RuleId id, std::set< unsigned > const & ports ) {
   Rule & rule = rules_.at( *id );
   rule.actions[ "EgressMask" ] = textOf( ports );
   call( "updateEgressMaskAction", rule,
         { { "group", numberOf( rule.group ) }, { "ports", textOf( ports ) } } );
   call( "reinstallEntry", rule, { { "group", numberOf( rule.group ) } } );
}

void Groups::release( unsigned unit, Group group, RuleId id ) {
   calls_.push_back( { "releaseEntry",
                       unit,
                       id ? rules_.at( *id ).name : "",
                       { { "group", numberOf( group ) } } } );
   if ( id ) {
      rules_.erase( *id );
      if ( hasRoom( unit, group ) ) {
         exhaustedIs( { group, unit }, false );
      }
   }
}

void Groups::call( char const * operation, Rule const & rule,
                   std::map< std::string, std::string > values ) {
   calls_.push_back( { operation, rule.unit, rule.name, std::move( values ) } );
}

// --- Room

unsigned Groups::entriesOf( Place const & place ) const {
   return static_cast< unsigned >(
      std::count_if( rules_.begin(), rules_.end(), [ & ]( auto const & one ) {
         return Place( one.second.group, one.second.unit ) == place;
      } ) );
}

bool Groups::hasRoom( unsigned unit, Group group ) const {
   unsigned const all = group == Group::ingress ? device_.ingressEntries : device_.egressEntries;
   auto const others = others_.find( { group, unit } );
   return entriesOf( { group, unit } ) + ( others == others_.end() ? 0 : others->second ) < all;
}

void Groups::othersHold( Group group, std::optional< unsigned > unit, unsigned entries ) {
   unsigned const all = group == Group::ingress ? device_.ingressEntries : device_.egressEntries;
   for ( auto const & [ number, module ] : device_.moduleOfUnit ) {
      if ( !unit || *unit == number ) {
         Place const place{ group, number };
         others_[ place ] = std::min( entries, all - entriesOf( place ) );
         if ( hasRoom( number, group ) ) {
            exhaustedIs( place, false );
         }
      }
   }
}

void Groups::exhaustedIs( Place const & place, bool exhausted ) {
   bool const isNew = exhausted ? exhausted_.insert( place ).second : exhausted_.erase( place ) > 0;
   if ( isNew && place.first == Group::ingress ) {
      isToLookAgain_ |=
         std::any_of( device_.moduleOfUnit.begin(), device_.moduleOfUnit.end(),
                      [ & ]( auto const & unit ) {
                         return !exhausted_.contains( { Group::ingress, unit.first } );
                      } );
   }
}

bool Groups::isTimeToLookAgain() {
   return std::exchange( isToLookAgain_, false );
}

}  // namespace Reference
