#include <Peers/ClassIdAllocator.h>

namespace Peers {

using Pelk::IpGenAddr;
using VornalCommon::ClassId;

ClassIdAllocator::ClassIdAllocator( Scenario::ClassIds const & range,
                                    Kiv::ActivityManager & activity, Quelm::Ptr< Config > config,
                                    Quelm::Ptr< Status > status )
      : range_( range ),
        activity_( activity ),
        config_( std::move( config ) ),
        status_( std::move( status ) ),
        requests_( config_, [ this ]( Kiv::Change const & change ) { noteRequest( change ); } ),
        grants_( status_, [ this ]( Kiv::Change const & change ) { noteGrant( change ); } ),
        unused_( range_.first ) {}

void ClassIdAllocator::start() {
   for ( auto grant = status_->remoteESPeerVtepIter(); grant; ++grant ) {
      take( grant.value() );
      if ( !config_->remoteESPeerVtepHas( grant.key() ) ) {
         activity_.turnNew( [ this, vtep = grant.key() ] { grantDel( vtep ); } );
      }
   }
   for ( auto request = config_->remoteESPeerVtepIter(); request; ++request ) {
      if ( !status_->remoteESPeerVtepHas( request.key() ) ) {
         queue( { request.key(), true } );
      }
   }
   requests_.hasNotificationActiveIs( true );
   grants_.hasNotificationActiveIs( true );
}

// --- Requests

void ClassIdAllocator::noteRequest( Kiv::Change const & change ) {
   queue( { change.key< IpGenAddr >(), change.newValue< bool >() != nullptr } );
}

void ClassIdAllocator::queue( Event const & event ) {
   events_.push_back( event );
   if ( !event.isRequest ) {
      ++cancellations_[ event.vtep ];
      waitNoMore( event.vtep );
   }
   turnAfter( range_.delay );
}

// Acts on the next event, this many turns after the next turn.
void ClassIdAllocator::turnAfter( U32 turns ) {
   activity_.turnNew( [ this, turns ] { turns == 0 ? actOnNext() : turnAfter( turns - 1 ); } );
}

void ClassIdAllocator::actOnNext() {
   if ( isPaused_ ) {
      ++heldBack_;
      return;
   }
   Event const event = events_.front();
   events_.pop_front();
   if ( !event.isRequest ) {
      release( event.vtep );
   } else if ( !cancellations_.contains( event.vtep ) &&
               !status_->remoteESPeerVtepHas( event.vtep ) ) {
      wait( event.vtep );
   }
}

void ClassIdAllocator::release( IpGenAddr const & vtep ) {
   auto const cancellations = cancellations_.find( vtep );
   if ( --cancellations->second == 0 ) {
      cancellations_.erase( cancellations );
   }
   grantDel( vtep );
}

void ClassIdAllocator::wait( IpGenAddr const & vtep ) {
   waitNoMore( vtep );
   waiting_[ ++lastPlace_ ] = vtep;
   place_[ vtep ] = lastPlace_;
   serve();
}

void ClassIdAllocator::waitNoMore( IpGenAddr const & vtep ) {
   if ( auto const place = place_.extract( vtep ) ) {
      waiting_.erase( place.mapped() );
   }
}

void ClassIdAllocator::pausedIs( bool paused ) {
   isPaused_ = paused;
   if ( !isPaused_ ) {
      for ( ; heldBack_ > 0; --heldBack_ ) {
         turnAfter( 0 );
      }
      serve();
   }
}

// --- Grants

bool ClassIdAllocator::canServe() const {
   return !isPaused_ && !waiting_.empty() && lowestFree() <= range_.last;
}

void ClassIdAllocator::serve() {
   if ( canServe() ) {
      activity_.turnNew( [ this ] { serveNext(); } );
   }
}

void ClassIdAllocator::serveNext() {
   if ( canServe() ) {
      IpGenAddr const vtep = waiting_.begin()->second;
      grantIs( vtep, ClassId( static_cast< U16 >( lowestFree() ) ) );
      serve();
   }
}

void ClassIdAllocator::grantIs( IpGenAddr const & vtep, ClassId id ) {
   status_->remoteESPeerVtepIs( vtep, id );
}

void ClassIdAllocator::grantDel( IpGenAddr const & vtep ) {
   status_->remoteESPeerVtepDel( vtep );
}

bool ClassIdAllocator::isGranted( IpGenAddr const & vtep ) const {
   return status_->remoteESPeerVtepHas( vtep );
}

// A grant was written, changed or deleted, by the allocator or by hand.
void ClassIdAllocator::noteGrant( Kiv::Change const & change ) {
   if ( auto const * const id = change.newValue< ClassId >() ) {
      waitNoMore( change.key< IpGenAddr >() );
      take( *id );
   }
   if ( auto const * const id = change.oldValue< ClassId >() ) {
      giveBack( *id );
   }
}

// --- Ids

U32 ClassIdAllocator::lowestFree() const {
   return returned_.empty() ? unused_ : *returned_.begin();
}

void ClassIdAllocator::take( ClassId id ) {
   ++users_[ id.value() ];
   returned_.erase( id.value() );
   while ( unused_ <= range_.last && users_.contains( static_cast< U16 >( unused_ ) ) ) {
      ++unused_;
   }
}

void ClassIdAllocator::giveBack( ClassId id ) {
   auto const users = users_.find( id.value() );
   if ( users != users_.end() && --users->second == 0 ) {
      users_.erase( users );
      if ( id.value() >= range_.first && id.value() <= range_.last ) {
         if ( id.value() < unused_ ) {
            returned_.insert( id.value() );
         }
         serve();
      }
   }
}

}  // namespace Peers
