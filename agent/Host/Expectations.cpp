#include <Host/Expectations.h>

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Quelm/Error.h>
#include <VornalTcam/EntryManager.h>

namespace Host {

namespace {

Vornal::TcamGroupAssignment assignmentOf( Scenario::TcamGroup group ) {
   return group == Scenario::TcamGroup::ingress ? Vornal::kIfpLocalBiasGroup
                                                : Vornal::kEfpLocalBiasGroup;
}

// --- State

// Looks at the attribute of an entity that is there.
template< typename Look >
Finding lookAt( Scenario::AttributeAt const & at, Evidence const & evidence, Look const & look ) {
   Quelm::Ptr< Kiv::Entity > entity;
   try {
      entity = evidence.finder.entity( at.entity );
   } catch ( Quelm::AccessError const & error ) {
      return { false, error.what() };
   }
   return look( *entity, StateDatabase::attributeOf( *entity, at.attribute ) );
}

Finding checkOne( Scenario::AttributeEquals const & expected, Evidence const & evidence ) {
   Scenario::AttributeAt const & at = expected.at;
   return lookAt( at, evidence, [ & ]( Kiv::Entity & entity, Kiv::Attribute const & attribute ) {
      if ( attribute.isKeyed() && !attribute.has( entity, at.key ) ) {
         return Finding{ false, fmt::format( "there is no key {}", at.key ) };
      }
      std::string const text = attribute.text( entity, at.key );
      return Finding{ text == expected.value, fmt::format( "it is {}", text ) };
   } );
}

Finding checkOne( Scenario::AttributeHas const & expected, Evidence const & evidence ) {
   Scenario::AttributeAt const & at = expected.at;
   return lookAt( at, evidence, [ & ]( Kiv::Entity & entity, Kiv::Attribute const & attribute ) {
      bool const isPresent = attribute.has( entity, at.key );
      return Finding{ isPresent == expected.isPresent, isPresent ? "it has" : "it has not" };
   } );
}

// --- The plug-in

Finding checkOne( Scenario::PluginReady const & expected, Evidence const & evidence ) {
   bool const isReady = evidence.pluginPoint.isReady();
   return { isReady == expected.isReady, isReady ? "it is ready" : "it is not ready" };
}

Finding checkOne( Scenario::TcamGroupsAskedFor const & expected, Evidence const & evidence ) {
   std::vector< U32 > wanted;
   for ( Scenario::TcamGroup const group : expected.groups ) {
      wanted.push_back( assignmentOf( group ) );
   }
   auto const & asked = evidence.record.tcamGroups();
   return { asked == wanted, asked.empty()
                                ? "it asked for none"
                                : fmt::format( "it asked for {}", fmt::join( asked, ", " ) ) };
}

// --- Rules

Finding checkOne( Scenario::RuleCount const & expected, Evidence const & evidence ) {
   U32 count = 0;
   for ( auto const & [ number, unit ] : evidence.units ) {
      auto const group = unit.groups().find( assignmentOf( expected.group ) );
      bool const counts = !expected.unit || *expected.unit == number;
      if ( counts && group != unit.groups().end() ) {
         count += group->second.used();
      }
   }
   return { count == expected.count, fmt::format( "there are {}", count ) };
}

// --- Lines

Finding timesFound( std::ptrdiff_t found, std::optional< U32 > const & expected ) {
   bool const isAsExpected = expected ? found == std::ptrdiff_t{ *expected } : found > 0;
   return { isAsExpected,
            found == 1 ? "it is there once" : fmt::format( "it is there {} times", found ) };
}

bool contains( std::string const & line, std::string const & text ) {
   return line.find( text ) != std::string::npos;
}

Finding checkOne( Scenario::LogLine const & expected, Evidence const & evidence ) {
   auto const & lines = evidence.record.log();
   return timesFound( std::count_if( lines.begin(), lines.end(),
                                     [ & ]( std::string const & line ) {
                                        return contains( line, expected.text );
                                     } ),
                      expected.times );
}

Finding checkOne( Scenario::TraceLine const & expected, Evidence const & evidence ) {
   auto const & lines = evidence.record.traces();
   return timesFound( std::count_if( lines.begin(), lines.end(),
                                     [ & ]( Story::TraceLine const & line ) {
                                        return line.handle == expected.handle &&
                                               line.level ==
                                                  expected.level.value_or( line.level ) &&
                                               contains( line.text, expected.text );
                                     } ),
                      expected.times );
}

}  // namespace

Finding check( Scenario::Expected const & expected, Evidence const & evidence ) {
   return std::visit( [ & ]( auto const & one ) { return checkOne( one, evidence ); }, expected );
}

}  // namespace Host
