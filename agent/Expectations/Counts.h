// Numbers of things, in words.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <Expectations/Expected.h>
#include <Quelm/Integers.h>

namespace Expectations {

// " once", " 3 times"; empty when any number will do.
std::string timesText( std::optional< U32 > const & times );

// A line that is there so many times; if no number is expected, once at least.
Finding timesFound( std::ptrdiff_t found, std::optional< U32 > const & expected );

}  // namespace Expectations
