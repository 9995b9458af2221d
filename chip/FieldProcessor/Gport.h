// Generic port numbers: one number space for ports of all kinds, told apart by a tag in the top
// byte.
//
//    bits 24 to 31   0x56 for a VXLAN virtual port
//    bits 16 to 23   zero
//    bits  0 to 15   index of the virtual port
//
// 0 is no port of any kind.
#pragma once

#include <Quelm/Integers.h>

namespace Chip {

constexpr U32 kVxlanGportTag = 0x56000000;

constexpr U32 vxlanGportOf( U16 vpIndex ) {
   return kVxlanGportTag | vpIndex;
}

}  // namespace Chip
