// The attributes that `set` and `delete` reach through the generic interface.
#pragma once

#include <string>

#include <Kiv/Attribute.h>
#include <Scenario/AttributeAt.h>

namespace Steps {

struct Context;

// A key that is left out is the empty key, if the attribute's keys have one. Throws
// Quelm::AccessError when a key is missing, or the attribute has no keys.
void checkKey( Kiv::Entity & entity, Kiv::Attribute const & attribute, std::string const & key );

// Warns about an empty key, which may have been left out by mistake.
void tellEmptyKey( Context const & context, Scenario::AttributeAt const & at, int line );

}  // namespace Steps
