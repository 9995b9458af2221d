#include <Host/Expectations.h>

#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Host/RuleExpectations.h>
#include <Quelm/Error.h>

namespace Host {

namespace {

bool contains( std::string const & line, std::string const & text ) {
   return line.find( text ) != std::string::npos;
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

// "it has Ethernet1, Ethernet2 and 7 more".
std::string keysText( std::vector< std::string > keys ) {
   constexpr std::size_t kMost = 8;
   std::size_t const more = keys.size() > kMost ? keys.size() - kMost : 0;
   keys.resize( keys.size() - more );
   return keys.empty() ? "it is empty"
                       : fmt::format( "it has {}{}", fmt::join( keys, ", " ),
                                      more == 0 ? "" : fmt::format( " and {} more", more ) );
}

Finding checkOne( Scenario::AttributeHas const & expected, Evidence const & evidence ) {
   Scenario::AttributeAt const & at = expected.at;
   return lookAt( at, evidence, [ & ]( Kiv::Entity & entity, Kiv::Attribute const & attribute ) {
      bool const isPresent = attribute.has( entity, at.key );
      return Finding{ isPresent == expected.isPresent,
                      isPresent ? "it has " + at.key
                                : fmt::format( "it lacks {}; {}", at.key,
                                               keysText( attribute.keys( entity ) ) ) };
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

Finding checkOne( Scenario::RulesLike const & expected, Evidence const & evidence ) {
   return checkRules( expected, evidence );
}

// --- Frames

bool isMeant( Chip::FrameStory const & frame, Scenario::FramesLike const & like ) {
   bool const isFrom = !like.from || ( frame.tunnel && frame.tunnel->source == *like.from );
   bool const isOfKind = like.kinds.empty() || ( frame.kind && like.kinds.contains( *frame.kind ) );
   return isFrom && isOfKind && ( !like.dropped || frame.dropReason );
}

bool isAt( Chip::Copy const & copy, Scenario::FrameTarget const & target ) {
   return std::visit( Story::Overloaded{ [ & ]( Pelk::IntfId const & intf ) {
                                           return !copy.remoteVtep && copy.intfId == intf;
                                        },
                                         [ & ]( Pelk::IpGenAddr const & vtep ) {
                                            return copy.remoteVtep == vtep;
                                         } },
                      target );
}

// Nothing: the frame was not to leave there.
std::optional< Chip::Verdict > verdictAt( Chip::FrameStory const & frame,
                                          Scenario::FrameTarget const & target ) {
   auto const copy =
      std::find_if( frame.copies.begin(), frame.copies.end(),
                    [ & ]( Chip::Copy const & one ) { return isAt( one, target ); } );
   return copy == frame.copies.end() ? std::nullopt : std::optional( copy->verdict );
}

// The port channel that the interface is a member of; empty when there is none.
std::string portChannelOf( Scenario::FrameTarget const & target, Evidence const & evidence ) {
   auto const * const intf = std::get_if< Pelk::IntfId >( &target );
   if ( !intf ) {
      return "";
   }
   auto const path =
      StateDatabase::EntityPath::fromString( "/lag/config/phyIntf[" + intf->stringValue() + "]" );
   try {
      auto const member = evidence.finder.entity( path );
      return StateDatabase::attributeOf( *member, "lag" ).text( *member, {} );
   } catch ( Quelm::AccessError const & ) {
      return "";
   }
}

// Frames leave by a port channel, whichever of its members they take.
std::string memberMistake( Scenario::FramesLike const & like, Evidence const & evidence ) {
   std::vector< Scenario::FrameTarget > targets = like.reach;
   targets.insert( targets.end(), like.neverReach.begin(), like.neverReach.end() );
   for ( auto const & [ intf, wanted ] : like.verdicts ) {
      targets.emplace_back( intf );
   }
   for ( Scenario::FrameTarget const & target : targets ) {
      if ( std::string const portChannel = portChannelOf( target, evidence );
           !portChannel.empty() ) {
         std::string const intf = std::get< Pelk::IntfId >( target ).stringValue();
         return fmt::format( "{} is a member of {}, by which frames leave as one; name {}", intf,
                             portChannel, portChannel );
      }
   }
   return "";
}

// What is wrong with the frame; empty when nothing is.
std::string mistakeOf( Story::FrameForwarded const & event, Scenario::FramesLike const & like ) {
   Chip::FrameStory const & frame = event.frame;
   auto const mistake = [ & ]( Scenario::FrameTarget const & target ) {
      auto const verdict = verdictAt( frame, target );
      return fmt::format( "frame {} is {} at {}", event.number,
                          verdict ? nameOf( *verdict ) : "not considered",
                          std::visit( []( auto const & one ) { return one.stringValue(); },
                                      target ) );
   };
   for ( Scenario::FrameTarget const & target : like.reach ) {
      if ( verdictAt( frame, target ) != Chip::Verdict::Sent ) {
         return mistake( target );
      }
   }
   for ( Scenario::FrameTarget const & target : like.neverReach ) {
      if ( verdictAt( frame, target ) == Chip::Verdict::Sent ) {
         return mistake( target );
      }
   }
   for ( auto const & [ intf, wanted ] : like.verdicts ) {
      if ( verdictAt( frame, intf ) != wanted ) {
         return mistake( intf );
      }
   }
   return like.dropped && frame.dropReason != like.dropped
             ? fmt::format( "frame {} is dropped as {}", event.number, nameOf( *frame.dropReason ) )
             : "";
}

Finding checkOne( Scenario::FramesLike const & expected, Evidence const & evidence ) {
   if ( std::string const mistake = memberMistake( expected, evidence ); !mistake.empty() ) {
      return { false, mistake };
   }
   U32 meant = 0;
   for ( Story::FrameForwarded const & event : evidence.record.frames() ) {
      if ( !isMeant( event.frame, expected ) ) {
         continue;
      }
      ++meant;
      if ( std::string const mistake = mistakeOf( event, expected ); !mistake.empty() ) {
         return { false, mistake };
      }
   }
   return { expected.count ? meant == *expected.count : meant > 0,
            meant == 1 ? "there is one such frame"
                       : fmt::format( "there are {} such frames", meant ) };
}

// --- Audits

std::string foundText( Audit::Report const & report ) {
   std::map< std::string_view, U32 > counts;
   for ( Story::Difference const & difference : report.differences ) {
      ++counts[ nameOf( difference.kind ) ];
   }
   std::string text;
   for ( auto const & [ kind, count ] : counts ) {
      text += fmt::format( "{}{} {}", text.empty() ? "" : ", ", count, kind );
   }
   return "it finds " + ( text.empty() ? "nothing" : text );
}

Finding checkOne( Scenario::InStep const & expected, Evidence const & evidence ) {
   Audit::Report const report = evidence.auditor.report();
   return { report.isInStep() == expected.isInStep, foundText( report ) };
}

Finding checkOne( Scenario::DifferencesLike const & expected, Evidence const & evidence ) {
   Audit::Report const report = evidence.auditor.report();
   auto const count = std::count_if( report.differences.begin(), report.differences.end(),
                                     [ & ]( auto const & difference ) {
                                        return expected.kind ? difference.kind == *expected.kind
                                                             : !isKnown( difference.kind );
                                     } );
   bool const isAsExpected =
      expected.count ? count == std::ptrdiff_t{ *expected.count } : count > 0;
   return { isAsExpected, foundText( report ) };
}

// --- Lines

Finding timesFound( std::ptrdiff_t found, std::optional< U32 > const & expected ) {
   bool const isAsExpected = expected ? found == std::ptrdiff_t{ *expected } : found > 0;
   return { isAsExpected,
            found == 1 ? "it is there once" : fmt::format( "it is there {} times", found ) };
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
                                     [ & ]( Story::Traced const & line ) {
                                        return line.handle == expected.handle &&
                                               line.level ==
                                                  expected.level.value_or( line.level ) &&
                                               contains( line.text, expected.text );
                                     } ),
                      expected.times );
}

}  // namespace

Vornal::TcamGroupAssignment assignmentOf( Scenario::TcamGroup group ) {
   return group == Scenario::TcamGroup::ingress ? Vornal::kIfpLocalBiasGroup
                                                : Vornal::kEfpLocalBiasGroup;
}

Finding check( Scenario::Expected const & expected, Evidence const & evidence ) {
   return std::visit( [ & ]( auto const & one ) { return checkOne( one, evidence ); }, expected );
}

}  // namespace Host
