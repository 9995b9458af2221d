#include <Moves.h>

#include <algorithm>
#include <ostream>

#include <Writer.h>

namespace Moves {

namespace {

std::string headOf( World const & world ) {
   std::string const last = std::to_string( world.units - 1 );
   return "scenario: random\nswitch:\n  name: leaf1\n  variant: " + world.variant + "\n  units: " +
          ( world.units == 1 ? "{ 0: { module: 1 } }" : "{ 0: { module: 1 }, 1: { module: 5 } }" ) +
          "\n  tcam: { ingress: " + std::to_string( world.ingressEntries ) +
          ", egress: " + std::to_string( world.egressEntries ) +
          " }\n  class-ids: { first: 1, last: " + std::to_string( world.classIds ) +
          " }\n  interfaces:\n"
          "    Ethernet1: { unit: 0, port: 1 }\n"
          "    Ethernet2: { unit: " +
          last +
          ", port: 2 }\n"
          "    Ethernet3: { unit: 0, port: 3 }\n"
          "    Ethernet4: { unit: " +
          last +
          ", port: 4 }\n"
          "    Ethernet5: { unit: 0, port: 5 }\n"
          "    Ethernet6: {}\n"
          "    Ethernet49: { unit: 0, port: 49 }\n"
          "  port-channels: { Port-Channel1: [ Ethernet3, Ethernet4 ], Port-Channel2: [] }\n"
          "forwarding:\n"
          "  vtep-addresses: [ 10.0.0.1, '2001:db8::1' ]\n"
          "  underlay: [ Ethernet49 ]\n"
          "  vlans: { 10: 10100 }\n"
          "  access: { Ethernet1: 10, Ethernet2: 10, Port-Channel1: 10, Port-Channel2: 10 }\n"
          "evpn:\n  tunnel-interfaces: { Vxlan1: {} }\n" +
          ( world.hasVniRules ? ""
                              : "features: '" VORNAL_SOURCE_DIR
                                "/scenarios/toggle-off/features'\n" );
}

bool isChange( std::string const & yaml ) {
   return yaml.starts_with( "publish" ) || yaml.starts_with( "withdraw" ) ||
          yaml.starts_with( "replace" );
}

std::string oneTurn( std::vector< std::string > const & changes ) {
   if ( changes.size() == 1 ) {
      return changes.front();
   }
   std::string yaml = "turn:";
   for ( std::string const & change : changes ) {
      yaml += "\n    - " + change;
   }
   return yaml;
}

// Puts a story together, move by move.
class Assembly {
 public:
   explicit Assembly( World const & world )
         : isCalm_( world.isCalm ), story_{ headOf( world ), {} }, writer_( world ) {}

   void add( Move const & move ) {
      auto const yaml = writer_.step( move );
      if ( !yaml ) {
         return;
      }
      if ( !isChange( *yaml ) ) {
         endTurn();
         story_.steps.push_back( { *yaml } );
         return look();
      }
      turn_.push_back( *yaml );
      if ( isCalm_ || !move.isWithNext ) {
         endTurn();
      }
   }

   void ready() {
      endTurn();
      story_.steps.push_back( { "ready: subagents::l2Ready" } );
      look();
   }

   Story story() {
      endTurn();
      return story_;
   }

 private:
   void endTurn() {
      if ( !turn_.empty() ) {
         story_.steps.push_back( { oneTurn( turn_ ) } );
         turn_.clear();
         look();
      }
   }

   void look() {
      auto const looks = writer_.looks();
      story_.steps.insert( story_.steps.end(), looks.begin(), looks.end() );
   }

   bool isCalm_;
   Story story_;
   Writer writer_;
   std::vector< std::string > turn_;  // the changes of a turn that is not over
};

}  // namespace

unsigned const kKinds = Writer::kinds();

std::ostream & operator<<( std::ostream & out, Move const & move ) {
   return out << "{ " << move.kind << ", " << move.place << ", " << move.who << ", " << move.number
              << ( move.isWithNext ? ", with next }" : " }" );
}

std::string Story::upTo( std::size_t step ) const {
   std::string text = head + "steps:\n";
   for ( std::size_t n = 0; n < step && n < steps.size(); ++n ) {
      if ( !steps[ n ].isLook || n + 1 == step ) {
         text += "  - " + steps[ n ].yaml + "\n";
      }
   }
   return text;
}

std::string Story::text() const {
   std::string text = head + "steps:\n";
   for ( Step const & step : steps ) {
      text += "  - " + step.yaml + "\n";
   }
   return text;
}

Story storyOf( World const & world, std::vector< Move > const & moves ) {
   Assembly assembly( world );
   std::size_t const ready = std::min< std::size_t >( world.movesBeforeReady, moves.size() );
   for ( std::size_t n = 0; n < ready; ++n ) {
      assembly.add( moves[ n ] );
   }
   assembly.ready();
   for ( std::size_t n = ready; n < moves.size(); ++n ) {
      assembly.add( moves[ n ] );
   }
   return assembly.story();
}

}  // namespace Moves
