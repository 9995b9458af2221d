// A rule in words: where it stands, what it matches and what it does.
//
//    unit 0, ingress group 157, entry 3, "Mark or drop packets at IFP"
//    matches SrcVxlanGport 0x56000002 (VTEP 10.0.0.2); does EgressMask ports 3, 4; priority 1
#pragma once

#include <functional>
#include <string>

#include <Snapshot/Rules.h>

namespace Chip {

// "ingress group 157", "egress group 45"; "group 9" for a group that the chip does not know.
std::string groupText( Vornal::TcamGroupAssignment group );
// The first line above.
std::string headingText( Rule const & rule );

// --- The second line

// Says what the number of a qualifier stands for, "VTEP 10.0.0.2"; an empty text where it is only
// a number.
using NameOf = std::function< std::string( Qualifier, U32 number ) >;
// What the chip itself knows: "known unicast" of a packet resolution.
std::string nameInChip( Qualifier qualifier, U32 number );

// The second line above; a rule that is not written says so at the end.
std::string bodyText( Rule const & rule, NameOf const & nameOf = nameInChip );
// The second line above.
std::string contentText( EntryContent const & content, NameOf const & nameOf = nameInChip );

// --- Parts of the second line

// "SrcVxlanGport 0x56000002 (VTEP 10.0.0.2) and PacketRes 4 (known unicast)"; "every frame".
std::string qualifiersText( EntryContent const & content, NameOf const & nameOf );
// "EgressMask ports 3, 4"; "nothing".
std::string actionsText( EntryContent const & content );

// The name and the value of a part that the content has: "PacketRes 4 mask 0xff (known unicast)",
// "Drop".
std::string partText( Qualifier qualifier, EntryContent const & content,
                      NameOf const & nameOf = nameInChip );
std::string partText( Action action, EntryContent const & content );

// The value under its mask, which is named where it is not all ones: "0x56000002", "4 mask 0xff",
// "module 1 port 3"; "absent".
std::string valueText( Qualifier qualifier, std::optional< Match > const & match );
// The same with the number's name: "4 mask 0xff (known unicast)".
std::string valueText( Qualifier qualifier, std::optional< Match > const & match,
                       NameOf const & nameOf );
// "ports 3, 4", "7", "present"; "absent".
std::string valueText( Action action, std::optional< ActionParameters > const & parameters );
// "ports 3, 4", "no port".
std::string portsText( Brum::PerUnitBitmap const & ports );
// "priority 1", "the group's default priority".
std::string priorityText( std::optional< U32 > const & priority );

}  // namespace Chip
