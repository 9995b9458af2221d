#include <Rest.h>

#include <algorithm>
#include <array>

#include <Host/Agent.h>
#include <Play.h>
#include <Process/RingMemory.h>
#include <Steps/Capture.h>
#include <Steps/Reader.h>

namespace Rest {

namespace {

using Reference::Event;

// So many copies by each interface, then to each VTEP.
using Copies = std::array< unsigned, Frames::kInterfaces.size() + Frames::kVteps.size() >;

std::string textOf( Copies const & copies ) {
   std::string text;
   for ( std::size_t n = 0; n < copies.size(); ++n ) {
      std::size_t const vtep = n - Frames::kInterfaces.size();
      for ( unsigned copy = 0; copy < copies.at( n ); ++copy ) {
         text += text.empty() ? "" : ", ";
         text += n < Frames::kInterfaces.size() ? Frames::kInterfaces.at( n )
                                                : Frames::kVteps.at( vtep );
      }
   }
   return text.empty() ? "nobody" : text;
}

template< typename All, typename One > std::size_t placeOf( All const & all, One const & one ) {
   return static_cast< std::size_t >( std::find( all.begin(), all.end(), one ) - all.begin() );
}

// One switch, twice.
class Pair final : public Story::Observer {
 public:
   Pair( Reference::Told const & told, Outcome & outcome )
         : outcome_( outcome ),
           switch_( told.device ),
           forwarding_( told.forwarding.value() ),
           reach_( switch_, forwarding_ ) {
      for ( Event const & event : told.before ) {
         switch_.happens( event );
      }
      for ( char const * const name : Frames::kInterfaces ) {
         intfIds_.push_back( Pelk::IntfId::fromString( name ) );
         interfaces_.emplace_back( name );
      }
      for ( char const * const address : Frames::kVteps ) {
         addresses_.push_back( Pelk::IpGenAddr::fromString( address ) );
         vteps_.emplace_back( address );
      }
   }

   void onEvent( Story::Event const & event ) override {
      if ( auto const * const forwarded = std::get_if< Story::FrameForwarded >( &event ) ) {
         take( forwarded->frame );
      } else if ( auto const * const change = std::get_if< Story::PublishedChange >( &event ) ) {
         take( *change );
      }
   }

   void begin() { grants_.clear(); }

   void stepIsOver( Reference::StepTold const & told ) {
      ::play( told, std::exchange( grants_, {} ), switch_, forwarding_ );
   }

   bool mustHaveStopped() const { return switch_.stop().has_value(); }

   // The program looks at stations when frames come. While two interfaces have one port, it takes
   // none.
   bool takesFrames() const {
      std::set< Reference::Port > ports;
      auto const & all = switch_.facts().port;
      return std::all_of( all.begin(), all.end(), [ & ]( auto const & one ) {
         return one.second.number == Reference::Port::kInvalid || ports.insert( one.second ).second;
      } );
   }

   bool canArrive( Frames::Arriving const & arriving ) const {
      return canLeaveBy( switch_.facts(), Reference::Interface( arriving.on.stringValue() ) );
   }

   void expect( Frames::Arriving const & arriving ) {
      reach_.stateChanged();
      arriving_ = &arriving;
      next_ = 0;
   }
   // How a frame differs; empty for none. It is the last one that was judged.
   std::string const & difference() const { return difference_; }
   std::size_t differing() const { return next_ - 1; }
   bool isKnown( Reference::Mac station ) const { return reach_.isKnown( station ); }

 private:
   void take( Story::PublishedChange const & change ) {
      if ( change.attribute != "remoteESPeerVtep" ||
           change.path.find( "/i2eclassid/status/" ) == std::string::npos ) {
         return;
      }
      Reference::Vtep const vtep( change.key );
      if ( change.to ) {
         auto const id = static_cast< unsigned >( std::stoul( *change.to ) );
         grants_.emplace_back( Reference::GrantIs{ vtep, id } );
      } else {
         grants_.emplace_back( Reference::GrantGoes{ vtep } );
      }
   }

   void take( Chip::FrameStory const & found ) {
      if ( !difference_.empty() ) {
         return;
      }
      Reference::Sending sending = arriving_->frames.at( next_++ ).sending;
      ++outcome_.frames;
      Copies const expected = copiesOf( sending, found );
      Copies const copies = copiesOf( found );
      if ( expected != copies ) {
         difference_ =
            "the frame must reach " + textOf( expected ) + ", and reaches " + textOf( copies );
      }
   }

   Copies copiesOf( Chip::FrameStory const & found ) const {
      Copies copies{};
      for ( Chip::Copy const & copy : found.copies ) {
         if ( copy.verdict == Chip::Verdict::Sent ) {
            std::size_t const place = copy.remoteVtep
                                         ? intfIds_.size() + placeOf( addresses_, *copy.remoteVtep )
                                         : placeOf( intfIds_, copy.intfId );
            ++copies.at( place );
         }
      }
      return copies;
   }

   Copies copiesOf( Reference::Sending & sending, Chip::FrameStory const & found ) {
      Copies copies{};
      Reference::Places const places = reach_.take( sending );
      if ( !places.interfaces.empty() ) {
         Reference::KeptBack keptBack( switch_, sending.frame );
         for ( Reference::Interface const & intf : places.interfaces ) {
            std::size_t const place = placeOf( interfaces_, intf );
            Reference::Port const port = portOf( intf, intfIds_.at( place ), found );
            copies.at( place ) += keptBack.at( port.unit, port.number ) ? 0U : 1U;
         }
      }
      for ( Reference::Vtep const & vtep : places.vteps ) {
         ++copies.at( interfaces_.size() + placeOf( vteps_, vtep ) );
      }
      return copies;
   }

   // A port of the interface: the one that the chip has chosen among several.
   Reference::Port portOf( Reference::Interface const & intf, Pelk::IntfId const & intfId,
                           Chip::FrameStory const & found ) const {
      std::set< Reference::Port > ports = switch_.facts().portsOf( intf );
      std::erase_if( ports, []( auto const & one ) { return one.number == one.kInvalid; } );
      auto const copy =
         std::find_if( found.copies.begin(), found.copies.end(), [ & ]( Chip::Copy const & one ) {
            return !one.remoteVtep && one.intfId == intfId && ports.size() > 1;
         } );
      auto const chosen =
         copy == found.copies.end()
            ? ports.end()
            : std::find_if( ports.begin(), ports.end(), [ & ]( Reference::Port const & one ) {
                 return one.unit == copy->port.unit() && one.number == copy->port.logicalPort();
              } );
      return chosen == ports.end() ? *ports.begin() : *chosen;
   }

   Outcome & outcome_;
   Reference::Switch switch_;
   Reference::Forwarding forwarding_;
   Reference::Reach reach_;
   std::vector< Event > grants_;
   std::vector< Pelk::IntfId > intfIds_;
   std::vector< Reference::Interface > interfaces_;
   std::vector< Pelk::IpGenAddr > addresses_;
   std::vector< Reference::Vtep > vteps_;
   Frames::Arriving const * arriving_ = nullptr;
   std::size_t next_ = 0;
   std::string difference_;
};

// A frame of the receiver, which makes it known, and the frame itself.
std::string stepsThatShow( Pair const & pair, std::vector< Frames::Arriving > const & frames,
                           Frames::Arriving const & arriving, Frames::Sent const & sent ) {
   std::string steps;
   for ( Frames::Arriving const & one : frames ) {
      auto const first =
         std::find_if( one.frames.begin(), one.frames.end(), [ & ]( Frames::Sent const & its ) {
            return its.sending.source == sent.sending.station &&
                   its.sending.to == Reference::To::everybody;
         } );
      if ( first != one.frames.end() && pair.isKnown( sent.sending.station ) ) {
         steps += "  - " + stepOf( one, *first ) + "\n";
      }
   }
   return steps + "  - " + stepOf( arriving, sent ) + "\n";
}

}  // namespace

void Outcome::differs( std::string const & how ) {
   how.copy( difference.data(), difference.size() - 1 );
}

Moves::Story storyWithoutFrames( Moves::Story story ) {
   std::erase_if( story.steps,
                  []( Moves::Step const & step ) { return step.yaml.starts_with( "frame: " ); } );
   std::size_t const begin = story.head.find( "forwarding:" );
   std::size_t const end = story.head.find( "evpn:" );
   story.head.replace( begin, end - begin, Frames::forwarding() );
   return story;
}

void play( Moves::Story const & story, std::vector< Frames::Arriving > const & frames,
           std::filesystem::path const & plugIn, Outcome & outcome ) {
   Scenario::Model const whole = Steps::readScenarioText( story.text(), "story.yaml" );
   Reference::Told const told = Reference::told( whole );
   Scenario::Model start = whole;
   start.steps.clear();
   Host::AgentConfig config;
   config.scenario = "story.yaml";
   config.plugin = plugIn;
   Process::RingMemory const ring;
   Pair pair( told, outcome );
   Host::Agent agent( start, config, ring.bytes(), pair );
   agent.begin();
   pair.begin();
   for ( std::size_t n = 0; n < whole.steps.size(); ++n ) {
      agent.carryOut( whole.steps[ n ] );
      pair.stepIsOver( told.steps[ n ] );
      if ( pair.mustHaveStopped() ) {
         return outcome.differs( "it must stop, and goes on\n" + story.upTo( n + 1 ) );
      }
      if ( !pair.takesFrames() ) {
         continue;
      }
      for ( Frames::Arriving const & arriving : frames ) {
         if ( !pair.canArrive( arriving ) ) {
            continue;
         }
         auto const capture = std::make_shared< Steps::Capture >();
         capture->file = arriving.capture;
         capture->on = arriving.on;
         pair.expect( arriving );
         agent.carryOut( { capture, 0 } );
         if ( !pair.difference().empty() ) {
            return outcome.differs(
               pair.difference() + "\n" + story.upTo( n + 1 ) +
               stepsThatShow( pair, frames, arriving, arriving.frames.at( pair.differing() ) ) );
         }
      }
   }
}

}  // namespace Rest
