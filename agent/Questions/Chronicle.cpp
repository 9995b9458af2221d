#include <Questions/Chronicle.h>

#include <algorithm>

namespace Questions {

namespace {

void noteMost( Chronicle::Room & room ) {
   room.most = std::max( room.most, room.used + room.foreign );
}

}  // namespace

void Chronicle::onEvent( Story::Event const & event ) {
   std::visit( Story::Overloaded{ [ & ]( Story::StepBegins const & step ) { note( step ); },
                                  [ & ]( Story::RuleIs const & rule ) { note( rule ); },
                                  [ & ]( Story::RuleGone const & rule ) { note( rule ); },
                                  [ & ]( Story::CallMade const & call ) { note( call ); },
                                  [ & ]( Story::ForeignEntriesAre const & are ) { note( are ); },
                                  [ & ]( Story::FrameForwarded const & frame ) { note( frame ); },
                                  [ & ]( Story::Logged const & line ) {
                                     log_.push_back( { step_, line.name, line.line } );
                                  },
                                  []( auto const & ) {} },
               event );
}

std::optional< U32 > Chronicle::stepOf( U64 frame ) const {
   auto const next = firstFrames_.upper_bound( frame );
   return frame > frames_ || next == firstFrames_.begin()
             ? std::nullopt
             : std::optional( std::prev( next )->second );
}

void Chronicle::note( Story::StepBegins const & event ) {
   step_ = event.number;
   steps_[ step_ ] = event.text;
}

void Chronicle::note( Story::RuleIs const & event ) {
   Chip::RuleKey const & key = event.rule.key;
   auto const [ rule, isNew ] = rules_.try_emplace( key, Steps{ step_, step_ } );
   rule->second.changed = step_;
   if ( isNew ) {
      Room & room = rooms_[ { key.unit, key.group } ];
      ++room.used;
      noteMost( room );
   }
}

void Chronicle::note( Story::RuleGone const & event ) {
   if ( rules_.erase( event.key ) != 0 ) {
      --rooms_[ { event.key.unit, event.key.group } ].used;
   }
}

// A request for an entry that was not given one.
void Chronicle::note( Story::CallMade const & event ) {
   Chip::HardwareCall const & call = event.call;
   if ( call.operation != "getEntry" || call.entry != 0 ) {
      return;
   }
   for ( Chip::NamedValue const & named : call.values ) {
      if ( named.name == "group" ) {
         auto const group =
            static_cast< Vornal::TcamGroupAssignment >( std::get< U32 >( named.value ) );
         ++rooms_[ { call.unit, group } ].refused;
      }
   }
}

void Chronicle::note( Story::ForeignEntriesAre const & event ) {
   Room & room = rooms_[ { event.unit, event.group } ];
   room.foreign = event.held;
   noteMost( room );
}

void Chronicle::note( Story::FrameForwarded const & event ) {
   frames_ = event.number;
   bool const isFirst = firstFrames_.empty() || std::prev( firstFrames_.end() )->second != step_;
   if ( isFirst ) {
      firstFrames_[ event.number ] = step_;
   }
   Chip::FrameStory const & frame = event.frame;
   for ( Chip::Copy const & copy : frame.copies ) {
      if ( copy.rule ) {
         ++keptBack_[ { frame.tunnel ? frame.tunnel->source.stringValue() : "",
                        copy.intfId.stringValue(), copy.port.logicalPort(), *copy.rule } ];
      }
   }
}

}  // namespace Questions
