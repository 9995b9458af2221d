// The part of the chip SDK's vocabulary that field-processor rules are made of: result codes,
// values and names as the SDK spells them.
//
// Values that differ between SDK releases are not fixed here; the shim reports them (Shim/Shim.h).
#pragma once

#include <array>

#include <Quelm/Integers.h>

// One bit per logical port of a unit; bit n in word n >> 5 at position n & 31.
struct _shr_pbmp {
   std::array< U32, 11 > words;
};

// Forwarding result of a frame, as the ingress field processor sees it.
enum : U8 {
   BCM_FIELD_PKT_RES_L2UC = 4,        // known unicast, bridged
   BCM_FIELD_PKT_RES_L3UCKNOWN = 10,  // known unicast, routed
};

constexpr U32 BCM_FIELD_EXACT_MATCH_MASK = 0xffffffff;

enum bcm_field_action_t : U32 {
   bcmFieldActionDrop,
   bcmFieldActionNewClassId,
   bcmFieldActionEgressClassSelect,
};

// The class that bcmFieldActionEgressClassSelect lets the egress field processor see.
enum : U32 {
   BCM_FIELD_EGRESS_CLASS_SELECT_NEW = 1,  // the class set by bcmFieldActionNewClassId
};

enum bcm_field_IpType_t : U32 {
   bcmFieldIpTypeAny,
   bcmFieldIpTypeNonIp,
   bcmFieldIpTypeIpv4Any,
   bcmFieldIpTypeIpv6,
};
