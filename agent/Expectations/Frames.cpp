#include <Expectations/Frames.h>

#include <algorithm>

#include <fmt/format.h>

#include <Expectations/Evidence.h>
#include <Quelm/Error.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>

namespace Expectations {

namespace {

namespace Shape = Scenario::Shape;

using Quelm::textOf;
using Scenario::Choices;
using Scenario::Table;

// --- Its words

// The names of all values of an enumeration of the chip.
template< typename T > std::string_view nameOfChip( std::size_t value ) {
   return Chip::nameOf( static_cast< T >( value ) );
}

template< typename T > Choices< T > choicesOf( Scenario::Place const & place, std::size_t count ) {
   Choices< T > choices{ place, {} };
   for ( std::size_t value = 0; value < count; ++value ) {
      choices.all.push_back( { nameOfChip< T >( value ), static_cast< T >( value ) } );
   }
   return choices;
}

Choices< Chip::FrameKind > const & frameKinds() {
   static auto const choices =
      choicesOf< Chip::FrameKind >( { "frame-kind",
                                      "The kind of a frame, from the forwarding decision." },
                                    Chip::kFrameKinds.size() );
   return choices;
}

Choices< Chip::Verdict > const & frameVerdicts() {
   static auto const choices =
      choicesOf< Chip::Verdict >( { "verdict", "The outcome of a frame at one place." },
                                  Chip::kVerdicts );
   return choices;
}

Choices< Chip::DropReason > const & dropReasons() {
   static auto const choices =
      choicesOf< Chip::DropReason >( { "drop-reason", "Why a whole frame was dropped." },
                                     Chip::kDropReasons );
   return choices;
}

void readLikeFrom( Reading & reading, Value const & value, FramesLike & frames ) {
   frames.from = Scenario::valueOf< Pelk::IpGenAddr >( reading, value );
}

// Reads one kind, or a list of them.
void readLikeKind( Reading & reading, Value const & value, FramesLike & frames ) {
   std::vector< Value > const all =
      value.node.IsSequence() ? listOf( reading, value ) : std::vector{ value };
   for ( Value const & one : all ) {
      if ( auto const kind = choiceOf( reading, one, frameKinds() ) ) {
         frames.kinds.insert( *kind );
      }
   }
}

std::optional< FrameTarget > targetIn( Reading & reading, std::string const & text, int line ) {
   if ( text.find_first_of( ".:" ) != std::string::npos ) {
      auto const vtep = Scenario::parsed< Pelk::IpGenAddr >( reading, text, line );
      return vtep ? std::optional< FrameTarget >( *vtep ) : std::nullopt;
   }
   auto const intf = Scenario::intfIn( reading, text, line );
   return intf ? std::optional< FrameTarget >( *intf ) : std::nullopt;
}

template< std::vector< FrameTarget > FramesLike::*targets >
void readTargets( Reading & reading, Value const & value, FramesLike & frames ) {
   for ( Value const & element : listOf( reading, value ) ) {
      auto const text = stringOf( reading, element );
      if ( auto const target = text ? targetIn( reading, *text, element.line ) : std::nullopt ) {
         ( frames.*targets ).push_back( *target );
      }
   }
}

void readVerdicts( Reading & reading, Value const & value, FramesLike & frames ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, Scenario::intfIn ) ) {
      if ( auto const verdict = choiceOf( reading, about, frameVerdicts() ) ) {
         frames.verdicts[ intf ] = *verdict;
      }
   }
}

void readDropped( Reading & reading, Value const & value, FramesLike & frames ) {
   frames.dropped = choiceOf( reading, value, dropReasons() );
}

Table< FramesLike > const & framesTable() {
   static Table< FramesLike > const table{
      { "frames-like",
        "The outcomes of the frames that the last step of frames has injected: of all frames that "
        "'from', 'kind' and 'dropped' select, and of one at least.",
        R"({"minProperties": 1})" },
      { { { "from", "", Shape::of( "address", "The VTEP that they came from." ) }, readLikeFrom },
        { { "kind", "",
            Shape::anyOf( { Shape::of( "frame-kind" ), Shape::listOf( Shape::of( "frame-kind" ) ) },
                          "Their kind, or a list of kinds." ) },
          readLikeKind },
        { { "reach", "",
            Shape::listOf( Shape::anyOf(
                              { Shape::of( "segment-interface" ), Shape::of( "address" ) } ),
                           "Interfaces and remote VTEPs that each of them reached." ) },
          readTargets< &FramesLike::reach > },
        { { "never-reach", "",
            Shape::listOf( Shape::anyOf(
                              { Shape::of( "segment-interface" ), Shape::of( "address" ) } ),
                           "Interfaces and remote VTEPs that none of them reached." ) },
          readTargets< &FramesLike::neverReach > },
        { { "verdicts", "",
            Shape::mappingOf( Shape::of( "segment-interface" ), Shape::of( "verdict" ),
                              "The outcome of each of them at an interface." ) },
          readVerdicts },
        { { "dropped", "",
            Shape::of( "drop-reason",
                       "They were dropped as a whole, for this reason; frames that were not "
                       "dropped do not count." ) },
          readDropped },
        { { "count", "", Shape::of( "count", "Their number." ) },
          Scenario::readNumber< FramesLike, &FramesLike::count > } }
   };
   return table;
}

// --- In words

std::string describe( std::vector< FrameTarget > const & targets ) {
   std::string text;
   for ( FrameTarget const & target : targets ) {
      text += ( text.empty() ? "" : ", " ) +
              std::visit( []( auto const & one ) { return textOf( one ); }, target );
   }
   return text;
}

// --- Outcomes of frames

bool isMeant( Chip::FrameStory const & frame, FramesLike const & like ) {
   bool const isFrom = !like.from || ( frame.tunnel && frame.tunnel->source == *like.from );
   bool const isOfKind = like.kinds.empty() || ( frame.kind && like.kinds.contains( *frame.kind ) );
   return isFrom && isOfKind && ( !like.dropped || frame.dropReason );
}

bool isAt( Chip::Copy const & copy, FrameTarget const & target ) {
   return std::visit( Story::Overloaded{ [ & ]( Pelk::IntfId const & intf ) {
                                           return !copy.remoteVtep && copy.intfId == intf;
                                        },
                                         [ & ]( Pelk::IpGenAddr const & vtep ) {
                                            return copy.remoteVtep == vtep;
                                         } },
                      target );
}

// The verdict on the frame at the target; nothing if the frame was not to leave there.
std::optional< Chip::Verdict > verdictAt( Chip::FrameStory const & frame,
                                          FrameTarget const & target ) {
   auto const copy =
      std::find_if( frame.copies.begin(), frame.copies.end(),
                    [ & ]( Chip::Copy const & one ) { return isAt( one, target ); } );
   return copy == frame.copies.end() ? std::nullopt : std::optional( copy->verdict );
}

// The port channel of the interface; empty without one.
std::string portChannelOf( FrameTarget const & target, Evidence const & evidence ) {
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

// Frames leave by a port channel, and any of its members can carry them.
std::string memberMistake( FramesLike const & like, Evidence const & evidence ) {
   std::vector< FrameTarget > targets = like.reach;
   targets.insert( targets.end(), like.neverReach.begin(), like.neverReach.end() );
   for ( auto const & [ intf, wanted ] : like.verdicts ) {
      targets.emplace_back( intf );
   }
   for ( FrameTarget const & target : targets ) {
      if ( std::string const portChannel = portChannelOf( target, evidence );
           !portChannel.empty() ) {
         std::string const intf = std::get< Pelk::IntfId >( target ).stringValue();
         return fmt::format(
            "{} is a member of {}, and frames leave by all of its members; name {}", intf,
            portChannel, portChannel );
      }
   }
   return "";
}

// The mistake in the frame's treatment; empty when there is none.
std::string mistakeOf( Story::FrameForwarded const & event, FramesLike const & like ) {
   Chip::FrameStory const & frame = event.frame;
   auto const mistake = [ & ]( FrameTarget const & target ) {
      auto const verdict = verdictAt( frame, target );
      return fmt::format( "frame {} is {} at {}", event.number,
                          verdict ? nameOf( *verdict ) : "not considered",
                          std::visit( []( auto const & one ) { return one.stringValue(); },
                                      target ) );
   };
   for ( FrameTarget const & target : like.reach ) {
      if ( verdictAt( frame, target ) != Chip::Verdict::Sent ) {
         return mistake( target );
      }
   }
   for ( FrameTarget const & target : like.neverReach ) {
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

}  // namespace

std::vector< WordList > FramesLike::vocabulary() {
   return { framesTable().list(), frameKinds().list(), frameVerdicts().list(),
            dropReasons().list() };
}

std::string FramesLike::shape() {
   return Shape::of( "frames-like" );
}

void FramesLike::read( Reading & reading, Value const & value ) {
   readAsWritten( reading, value, framesTable(), *this );
}

std::string FramesLike::description() const {
   std::string text;
   for ( Chip::FrameKind const kind : kinds ) {
      text += std::string( text.empty() ? "" : " or " ) + std::string( Chip::nameOf( kind ) );
   }
   text += text.empty() ? "frames" : " frames";
   auto const add = [ & ]( bool isAsked, std::string const & more ) {
      text += isAsked ? " " + more : "";
   };
   add( from.has_value(), "from VTEP " + textOf( from.value_or( Pelk::IpGenAddr() ) ) );
   add( !reach.empty(), "reach " + describe( reach ) );
   add( !neverReach.empty(), "never reach " + describe( neverReach ) );
   for ( auto const & [ intf, verdict ] : verdicts ) {
      add( true, fmt::format( "are {} at {}", Chip::nameOf( verdict ), textOf( intf ) ) );
   }
   add( dropped.has_value(),
        dropped ? fmt::format( "are dropped as {}", Chip::nameOf( *dropped ) ) : "" );
   return text + ( count ? fmt::format( ", {} of them", *count ) : "" );
}

Finding FramesLike::check( Evidence const & evidence ) const {
   if ( std::string const mistake = memberMistake( *this, evidence ); !mistake.empty() ) {
      return { false, mistake };
   }
   U32 meant = 0;
   for ( Story::FrameForwarded const & event : evidence.record.frames() ) {
      if ( !isMeant( event.frame, *this ) ) {
         continue;
      }
      ++meant;
      if ( std::string const mistake = mistakeOf( event, *this ); !mistake.empty() ) {
         return { false, mistake };
      }
   }
   return { count ? meant == *count : meant > 0,
            meant == 1 ? "there is one such frame"
                       : fmt::format( "there are {} such frames", meant ) };
}

}  // namespace Expectations
