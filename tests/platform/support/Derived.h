// A directory that a derivation keeps in sync with published entities, and every change of it.
//
// Both derivations have such a world: their port channels, their shared segments. Beside the words
// of its own subject a world says what the tests of all derivations need (Derivation_test.cpp).
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include "FamilyScribe.h"

namespace Support {

// A directory's content: the texts of the keys of each member's set.
using Table = std::map< std::string, std::set< std::string > >;

template< typename Sm, typename Directory, typename Member > class Derived {
 public:
   Derived( Quelm::Ptr< Directory > const & target, Kiv::AttributeId members,
            typename FamilyScribe< Directory, Member >::Contents const & contents )
         : directory( target ), scribe_( directory, members, seen_, contents ) {}
   Derived( Derived const & ) = delete;
   Derived & operator=( Derived const & ) = delete;
   virtual ~Derived() = default;

   // A derivation that is switched off.
   virtual Quelm::Ptr< Sm > smNew() = 0;
   Quelm::Ptr< Sm > activeSmNew() {
      auto const sm = smNew();
      sm->hasNotificationActiveIs( true );
      return sm;
   }
   // The changes since it was last asked for.
   Journal news() { return std::exchange( seen_, {} ); }
   // The whole directory as text.
   std::string state() const {
      std::string text;
      for ( auto const & [ key, members ] : held() ) {
         text += key + "{";
         for ( auto const & member : members ) {
            text += ( text.back() == '{' ? "" : " " ) + member;
         }
         text += "}";
      }
      return text;
   }
   virtual Table held() const = 0;

   Quelm::Ptr< Directory > directory;

 private:
   Journal seen_;
   FamilyScribe< Directory, Member > scribe_;
};

}  // namespace Support
