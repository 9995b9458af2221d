// Numbers of things, in words.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <Expectations/Expected.h>
#include <Quelm/Integers.h>

namespace Expectations {

// " once", " 3 times"; empty without a number.
std::string timesText( std::optional< U32 > const & times );

// A line was found so many times; without an expected number, one is enough.
Finding timesFound( std::ptrdiff_t found, std::optional< U32 > const & expected );

}  // namespace Expectations
