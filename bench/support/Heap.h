// What the process has allocated, in bytes as malloc counts them: with what it adds to each piece.
#pragma once

#include <malloc.h>

namespace Bench {

inline double bytesInUse() {
   auto const all = mallinfo2();
   return static_cast< double >( all.uordblks + all.hblkhd );
}

}  // namespace Bench
