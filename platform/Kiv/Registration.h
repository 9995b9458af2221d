// How a source file adds a type to the register.
//
// A module's types are in the register before the rest of the module is initialised, whatever the
// order in which its files were linked. The other registrations of a module (trace handles, log
// messages, mounters) can therefore rely on its types.
#pragma once

#include <Kiv/Type.h>

// NOLINTBEGIN(cppcoreguidelines-macro-usage)
// Objects with a priority are built in the order of their numbers, and before all without.
#define KIV_FIRST [[gnu::init_priority( 2000 )]]

#define KIV_REGISTER( ... )                                                                        \
   static ::Kiv::TypeRegistration const KIV_UNIQUE( kivRegistration, __LINE__ )                    \
      KIV_FIRST( __VA_ARGS__ );

#define KIV_UNIQUE_OF( name, line ) name##line
#define KIV_UNIQUE( name, line ) KIV_UNIQUE_OF( name, line )
// NOLINTEND(cppcoreguidelines-macro-usage)
