#include <Kiv/Reactor.h>

#include <cstdlib>
#include <iostream>

#include <Kiv/Entity.h>

namespace Kiv {

// One walk over the subscribers. Lives on the stack of publish(); the publisher keeps the chain of
// walks under way so that an unsubscription can move them past the reactor that goes.
class Publisher::Delivery {
 public:
   explicit Delivery( Publisher & publisher )
         : publisher_( publisher ),
           outer_( publisher.delivering_ ),
           next_( publisher.first_ ),
           last_( publisher.last_ ) {
      publisher.delivering_ = this;
   }
   Delivery( Delivery const & ) = delete;
   Delivery & operator=( Delivery const & ) = delete;
   ~Delivery() { publisher_.delivering_ = outer_; }

   // The next reactor to call, or nullptr.
   Reactor * take() {
      Reactor * const reactor = next_;
      if ( reactor ) {
         next_ = reactor == last_ ? nullptr : reactor->next_;
      }
      return reactor;
   }

   // `gone` is about to be unlinked; `before` precedes it in the list.
   void skip( Reactor const * gone, Reactor * before ) {
      if ( next_ == gone ) {
         next_ = gone == last_ ? nullptr : gone->next_;
      }
      if ( last_ == gone ) {
         last_ = before;
      }
      if ( outer_ ) {
         outer_->skip( gone, before );
      }
   }

 private:
   Publisher & publisher_;
   Delivery * outer_;
   Reactor * next_;
   Reactor * last_;
};

Publisher::~Publisher() {
   QUELM_ASSERT( !first_ );
}

std::size_t Publisher::subscribers() const {
   std::size_t count = 0;
   for ( Reactor const * reactor = first_; reactor; reactor = reactor->next_ ) {
      ++count;
   }
   return count;
}

void Publisher::publish( Change const & change ) noexcept {
   if ( !hasSubscribers() ) {
      return;
   }
   try {
      Delivery delivery( *this );
      while ( Reactor * const reactor = delivery.take() ) {
         reactor->onAttribute( change );
      }
   } catch ( std::exception const & error ) {
      std::cerr << "exception left a change handler: " << error.what() << std::endl;
      std::abort();
   }
}

void Publisher::subscribe( Reactor & reactor ) {
   reactor.next_ = nullptr;
   ( last_ ? last_->next_ : first_ ) = &reactor;
   last_ = &reactor;
}

void Publisher::unsubscribe( Reactor & reactor ) {
   Reactor * before = nullptr;
   Reactor * at = first_;
   while ( at != &reactor ) {
      QUELM_ASSERT( at );
      before = at;
      at = at->next_;
   }
   if ( delivering_ ) {
      delivering_->skip( &reactor, before );
   }
   ( before ? before->next_ : first_ ) = reactor.next_;
   if ( last_ == &reactor ) {
      last_ = before;
   }
}

Reactor::~Reactor() {
   unsubscribe();
}

void Reactor::hasNotificationActiveIs( bool active ) {
   if ( active == isActive_ ) {
      return;
   }
   if ( active ) {
      isActive_ = true;
      subscribe();
   } else {
      unsubscribe();
      isActive_ = false;
   }
}

void Reactor::watchedIs( Quelm::Ptr< Entity const > notifier ) {
   if ( notifier == watched_ ) {
      return;
   }
   unsubscribe();
   // The old notifier goes last: it may be the last reference, and its end may reach back here.
   std::swap( watched_, notifier );
   subscribe();
}

void Reactor::subscribe() {
   if ( isActive_ && watched_ ) {
      watched_->publisher().subscribe( *this );
   }
}

void Reactor::unsubscribe() {
   if ( isActive_ && watched_ ) {
      watched_->publisher().unsubscribe( *this );
   }
}

}  // namespace Kiv
