#include <Rules/Groups.h>

#include <algorithm>

namespace Reference {

namespace {

constexpr Result kUnknownEntry = -2;
constexpr Result kNotFound = -3;
constexpr Result kExists = -4;
constexpr Result kNotInstalled = -7;

char const * const kPort = "DstPort";
char const * const kModule = "DstPort module";

std::string text( unsigned number ) {
   return std::to_string( number );
}

std::string numberOf( Group group ) {
   return text( group == Group::ingress ? 157 : 45 );
}

std::string operationOn( std::string const & qualifier ) {
   return std::string( "bcm_field_qualify_" ).append( qualifier );
}

std::map< std::string, std::string > valuesOf( std::string const & qualifier,
                                               Match const & match ) {
   if ( qualifier == "SrcVxlanGport" ) {
      return { { "gport", text( match.data ) } };
   }
   if ( qualifier == "IpType" ) {
      return { { "ipType", text( match.data ) } };
   }
   return { { "data", text( match.data ) }, { "mask", text( match.mask ) } };
}

std::map< std::string, std::string > valuesOf( PortMatch const & match ) {
   return { { "modId", text( match.module.data ) },
            { "modIdMask", text( match.module.mask ) },
            { "port", text( match.port.data ) },
            { "portMask", text( match.port.mask ) } };
}

// The part with that name, or nullptr.
template< typename Parts > auto const * find( Parts const & parts, std::string const & name ) {
   auto const found = parts.find( name );
   return found == parts.end() ? nullptr : &found->second;
}

}  // namespace

// --- A call

// `work` gets the rule, and gives the result; it can still fill in the values.
template< typename Work >
Result Groups::call( std::string const & operation, Target const & target, Values const & values,
                     Work const & work ) {
   auto const rule = target.id ? rules_.find( *target.id ) : rules_.end();
   Result result = faults_.codeOfNext( operation );
   if ( result == 0 ) {
      result = rule == rules_.end() ? kUnknownEntry : work( rule->second );
   }
   calls_.push_back( { operation, target.unit, nameOf( target.id ), values, result } );
   return result;
}

Groups::Target Groups::targetOf( RuleId id ) const {
   return { unitOf( id ), id };
}

std::string Groups::nameOf( RuleId id ) const {
   return id ? all_.at( *id ).name : "";
}

// --- Rules

RuleId Groups::obtain( unsigned unit, Group group, std::string const & name ) {
   bool const isRefused = faults_.isNextRefused();
   bool const isThereRoom = !isRefused && hasRoom( unit, group );
   Call & made = calls_.emplace_back();
   made.operation = "getEntry";
   made.unit = unit;
   made.values = { { "group", numberOf( group ) }, { "name", name } };
   if ( !isThereRoom ) {
      exhaustedIs( { group, unit }, true );
      return std::nullopt;
   }
   made.rule = name;
   return add( unit, group, name );
}

RuleId Groups::add( unsigned unit, Group group, std::string const & name ) {
   auto const id = static_cast< unsigned >( all_.size() + 1 );
   Rule rule{ unit, group, name };
   rule.entry = ++lastEntry_[ unit ];
   rules_[ id ] = all_[ id ] = rule;
   return id;
}

Result Groups::match( RuleId id, std::string const & qualifier, Match const & match ) {
   return call( operationOn( qualifier ), targetOf( id ), valuesOf( qualifier, match ),
                [ & ]( Rule & rule ) {
                   rule.staged.qualifiers[ qualifier ] = match;
                   return 0;
                } );
}

Result Groups::matchPort( RuleId id, unsigned module, unsigned port ) {
   PortMatch const match{ { module }, { port } };
   return call( "bcm_field_qualify_DstPort", targetOf( id ), valuesOf( match ),
                [ & ]( Rule & rule ) {
                   rule.staged.qualifiers[ kModule ] = match.module;
                   rule.staged.qualifiers[ kPort ] = match.port;
                   return 0;
                } );
}

Result Groups::addAction( RuleId id, std::string const & action, unsigned number ) {
   Values const values{ { "action", action }, { "param0", text( number ) }, { "param1", "0" } };
   return call( "bcm_field_action_add", targetOf( id ), values, [ & ]( Rule & rule ) {
      return rule.staged.actions.try_emplace( action, std::set{ number } ).second ? 0 : kExists;
   } );
}

// --- Rules: the calls of their group's manager

template< typename Work >
Result Groups::callOfManager( std::string const & operation, RuleId id, Values values,
                              Work const & work ) {
   values[ "group" ] = numberOf( all_.at( *id ).group );
   return call( operation, targetOf( id ), values, work );
}

Result Groups::addMask( RuleId id, std::set< unsigned > const & ports ) {
   return callOfManager( "addEgressMaskAction", id, { { "ports", textOf( ports ) } },
                         [ & ]( Rule & rule ) {
                            auto const mask =
                               rule.staged.actions.try_emplace( "EgressMask", ports );
                            return mask.second ? 0 : kExists;
                         } );
}

Result Groups::priorityIs( RuleId id, unsigned priority ) {
   return callOfManager( "setPriorityForEntry", id, { { "priority", text( priority ) } },
                         [ & ]( Rule & rule ) {
                            rule.staged.priority = priority;
                            return 0;
                         } );
}

Result Groups::install( RuleId id ) {
   return callOfManager( "installEntry", id, {}, []( Rule & rule ) {
      rule.written = rule.staged;
      return 0;
   } );
}

Result Groups::maskIs( RuleId id, std::set< unsigned > const & ports ) {
   return callOfManager( "updateEgressMaskAction", id, { { "ports", textOf( ports ) } },
                         [ & ]( Rule & rule ) {
                            auto const mask = rule.staged.actions.find( "EgressMask" );
                            if ( mask == rule.staged.actions.end() ) {
                               return kNotFound;
                            }
                            mask->second = ports;
                            return 0;
                         } );
}

Result Groups::reinstall( RuleId id ) {
   return callOfManager( "reinstallEntry", id, {}, []( Rule & rule ) {
      if ( !rule.written ) {
         return kNotInstalled;
      }
      rule.written = rule.staged;
      return 0;
   } );
}

Result Groups::release( unsigned unit, Group group, RuleId id ) {
   Result const result = call( "releaseEntry", { unit, id }, { { "group", numberOf( group ) } },
                               []( Rule const & ) { return 0; } );
   if ( result == 0 ) {
      rules_.erase( *id );
      if ( hasRoom( unit, group ) ) {
         exhaustedIs( { group, unit }, false );
      }
   }
   return result;
}

// --- Read-back

ReadBack< Match > Groups::readMatch( unsigned unit, RuleId id, std::string const & qualifier ) {
   Values values;
   ReadBack< Match > read{ 0, { 0, 0 } };
   read.result =
      call( operationOn( qualifier ) + "_get", { unit, id }, values, [ & ]( Rule const & rule ) {
         auto const * const match =
            rule.written ? find( rule.written->qualifiers, qualifier ) : nullptr;
         if ( !match ) {
            return kNotFound;
         }
         read.value = *match;
         values = valuesOf( qualifier, *match );
         return 0;
      } );
   return read;
}

ReadBack< PortMatch > Groups::readPort( unsigned unit, RuleId id ) {
   Values values;
   ReadBack< PortMatch > read;
   read.result =
      call( "bcm_field_qualify_DstPort_get", { unit, id }, values, [ & ]( Rule const & rule ) {
         auto const * const port = rule.written ? find( rule.written->qualifiers, kPort ) : nullptr;
         if ( !port ) {
            return kNotFound;
         }
         read.value = { rule.written->qualifiers.at( kModule ), *port };
         values = valuesOf( read.value );
         return 0;
      } );
   return read;
}

ReadBack< unsigned > Groups::readAction( unsigned unit, RuleId id, std::string const & action ) {
   Values values{ { "action", action } };
   ReadBack< unsigned > read;
   read.result = call( "bcm_field_action_get", { unit, id }, values, [ & ]( Rule const & rule ) {
      auto const * const numbers = rule.written ? find( rule.written->actions, action ) : nullptr;
      if ( !numbers ) {
         return kNotFound;
      }
      read.value = *numbers->begin();
      values[ "param0" ] = text( read.value );
      values[ "param1" ] = "0";
      return 0;
   } );
   return read;
}

ReadBack< std::set< unsigned > > Groups::readMask( unsigned unit, RuleId id ) {
   Values values{ { "group", numberOf( Group::ingress ) } };
   ReadBack< std::set< unsigned > > read;
   read.result = call( "getEgressMaskActionPbmp", { unit, id }, values, [ & ]( Rule const & rule ) {
      auto const * const ports =
         rule.written ? find( rule.written->actions, "EgressMask" ) : nullptr;
      if ( !ports ) {
         return kNotFound;
      }
      read.value = *ports;
      values[ "ports" ] = textOf( *ports );
      return 0;
   } );
   return read;
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
