// Quelm::Ptr< T >: a counted reference to an object that counts its own users.
//
// The count lives inside the object, so a plain `this` can be turned into a reference at any time
// and a reference costs one pointer. Users of an object are equal: the last to let go destroys it.
//
// Life of the count. An object is born with one user, its creator, and Quelm::make hands that use
// over to the reference that it returns. A constructor may therefore run handlers that take and
// drop references to the object being built: the count never falls to zero before the constructor
// has returned. A destructor may do the same: once the last user is gone the count is set far from
// zero.
//
// An empty reference that is used is a failed assertion, never undefined behaviour:
// "reference is not empty", with the type of the reference in the function's signature.
//
// Counts are plain integers. References are taken and dropped by holders of the activity lock only
// (Kiv/Activity.h). Back references (child to parent) are plain pointers and are not counted, so
// that no ring of references keeps itself alive.
#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

#include <Quelm/Assert.h>
#include <Quelm/Integers.h>

namespace Quelm {

// Base of every counted object. Counted objects live on the heap and come from Quelm::make.
class Counted {
 public:
   Counted() = default;
   Counted( Counted const & ) = delete;
   Counted & operator=( Counted const & ) = delete;
   virtual ~Counted() = default;

   void userNew() const { ++users_; }
   void userGone() const {
      if ( --users_ == 0 ) {
         users_ = kBeingDestroyed;
         const_cast< Counted * >( this )->lastUserGone();
      }
   }
   U32 users() const { return users_; }

 protected:
   // Runs once, when the last reference to the object has gone.
   virtual void lastUserGone() { delete this; }

 private:
   static constexpr U32 kBeingDestroyed = 0x40000000;
   mutable U32 users_ = 1;
};

template< typename T > class Ptr {
 public:
   using element_type = T;

   Ptr() = default;
   Ptr( std::nullptr_t ) {}
   explicit Ptr( T * target ) : target_( target ) { take(); }
   Ptr( Ptr const & other ) : target_( other.target_ ) { take(); }
   Ptr( Ptr && other ) noexcept : target_( std::exchange( other.target_, nullptr ) ) {}
   template< typename U >
   requires std::is_convertible_v< U *, T * > Ptr( Ptr< U > const & other )
         : target_( other.get() ) {
      take();
   }
   // Version 14 of clang-format takes the noexcept for a part of the body.
   // clang-format off
   template< typename U >
   requires std::is_convertible_v< U *, T * > Ptr( Ptr< U > && other ) noexcept
         : target_( other.release() ) {}
   // clang-format on
   ~Ptr() { drop(); }

   Ptr & operator=( Ptr other ) noexcept {
      std::swap( target_, other.target_ );
      return *this;
   }

   // The target, which must exist.
   T * operator->() const {
      QUELM_ASSERT( "reference is not empty" && target_ );
      return target_;
   }
   T & operator*() const { return *operator->(); }

   T * get() const { return target_; }
   explicit operator bool() const { return target_ != nullptr; }

   // Gives the use up without dropping it: the caller becomes the user.
   T * release() { return std::exchange( target_, nullptr ); }

   // Takes over a use that the caller holds.
   static Ptr adopt( T * target ) {
      Ptr result;
      result.target_ = target;
      return result;
   }

   template< typename U > friend bool operator==( Ptr const & a, Ptr< U > const & b ) {
      return a.get() == b.get();
   }
   friend bool operator==( Ptr const & a, std::nullptr_t ) { return a.target_ == nullptr; }

 private:
   void take() const {
      if ( target_ ) {
         target_->userNew();
      }
   }
   void drop() {
      if ( target_ ) {
         target_->userGone();
      }
   }

   T * target_ = nullptr;
};

// Builds a counted object; the returned reference is its first user.
template< typename T, typename... Args > Ptr< T > make( Args &&... args ) {
   return Ptr< T >::adopt( new T( std::forward< Args >( args )... ) );
}

// The same object seen as a T, or an empty reference when it is none.
template< typename T, typename U > Ptr< T > dynamicCast( Ptr< U > const & from ) {
   return Ptr< T >( dynamic_cast< T * >( from.get() ) );
}

}  // namespace Quelm

template< typename T > struct std::hash< Quelm::Ptr< T > > {
   std::size_t operator()( Quelm::Ptr< T > const & ptr ) const noexcept {
      return std::hash< T * >()( ptr.get() );
   }
};
