#include <Play.h>

namespace {

using Reference::Event;

// A grant that the scenario itself publishes or withdraws is among the run's changes, too.
void forgetGrant( Event const & event, std::vector< Event > & grants ) {
   if ( grants.empty() ) {
      return;
   }
   auto const * const given = std::get_if< Reference::GrantIs >( &event );
   auto const * const first = std::get_if< Reference::GrantIs >( &grants.front() );
   auto const * const gone = std::get_if< Reference::GrantGoes >( &event );
   auto const * const end = std::get_if< Reference::GrantGoes >( &grants.front() );
   if ( ( given && first && given->vtep == first->vtep && given->id == first->id ) ||
        ( gone && end && gone->vtep == end->vtep ) ) {
      grants.erase( grants.begin() );
   }
}

}  // namespace

void play( Reference::StepTold const & told, std::vector< Event > grants,
           Reference::Switch & device, Reference::Forwarding & forwarding ) {
   for ( auto const & turn : told.turns ) {
      for ( Event const & event : turn ) {
         forgetGrant( event, grants );
         device.happens( event );
      }
      device.turnEnds();
   }
   for ( Event const & grant : grants ) {
      device.happens( grant );
      device.turnEnds();
   }
   for ( auto const & [ intf, isDesignated ] : told.isDesignated ) {
      isDesignated ? void( forwarding.notDesignated.erase( intf ) )
                   : void( forwarding.notDesignated.insert( intf ) );
   }
}
