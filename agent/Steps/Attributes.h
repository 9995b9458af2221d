// The attributes that `set` and `delete` reach through the generic interface.
#pragma once

#include <string>

#include <Kiv/Attribute.h>
#include <Scenario/AttributeAt.h>

namespace Steps {

struct Context;

// A key that is left out is the empty one, where the keys have one. Quelm::AccessError when a key
// is missing, or there are none.
void checkKey( Kiv::Entity & entity, Kiv::Attribute const & attribute, std::string const & key );

// Nobody leaves out a key on purpose without wanting to be told.
void tellEmptyKey( Context const & context, Scenario::AttributeAt const & at, int line );

}  // namespace Steps
