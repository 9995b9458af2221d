// What a rule matches and does, in words.
#pragma once

#include <string>

#include <FieldProcessor/Entry.h>

namespace Audit {

// The value under its mask, which is named where it is not all ones: "0x56000002", "4 mask 0xff",
// "module 1 port 3"; "absent".
std::string textOf( Chip::Qualifier qualifier, std::optional< Chip::Match > const & match );
// "ports 3, 4", "7", "present"; "absent".
std::string textOf( Chip::Action action,
                    std::optional< Chip::ActionParameters > const & parameters );
// "priority 1", "the group's default priority".
std::string priorityText( std::optional< U32 > const & priority );
// "ports 3, 4", "no port".
std::string textOf( Brum::PerUnitBitmap const & ports );

// "matches SrcVxlanGport 0x56000002; does EgressMask ports 3, 4; priority 1"
std::string textOf( Chip::EntryContent const & content );

}  // namespace Audit
