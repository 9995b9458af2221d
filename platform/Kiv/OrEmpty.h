// A missing input reads as empty.
#pragma once

#include <Kiv/Entity.h>

namespace Kiv {

// The entity referred to, or one of its type without any member.
template< typename T > T const & orEmpty( Quelm::Ptr< T const > const & input ) {
   static auto const empty = Quelm::make< T >( "" );
   return input ? *input : *empty;
}

}  // namespace Kiv
