// The one door to the chip's field processor: an object whose operations are the SDK's calls.
//
// `Shim::sdk_` is the object in use. The agent sets it before a plug-in is told to start, and
// plug-ins reach the chip through it and in no other way. The operations keep the SDK's names, so
// that a call in the source reads as it does in the SDK's manual and in an error line.
//
// A field call returns a result code: negative is failure, zero and positive are success. Plug-ins
// do not look at it themselves but make every field call through SDK_FIELD_CALL (Shim/FieldCall.h),
// which also announces the call by beforeFieldCall() and stops the process when it fails.
//
// Qualifiers and actions change the staged copy of an entry; the entry managers (VornalTcam/) write
// it to the hardware. A qualifier states data and mask, those of source gport and IP type a value
// alone; reading back gives the written copy. A qualifier or action that the entry's group does not
// support is refused with a negative code, and so is an entry id that the unit does not know.
//
// Threads: field calls are made with the activity lock given up, by one thread at a time.
#pragma once

#include <string>

#include <Quelm/Integers.h>
#include <Shim/Sdk.h>

namespace Shim {

struct Call;

class Sdk {
 public:
   virtual ~Sdk() = default;

   // --- Ingress qualifiers
   virtual S32 bcm_field_qualify_SrcVxlanGport( U32 unit, U32 entry, U32 gport ) = 0;
   virtual S32 bcm_field_qualify_PacketRes( U32 unit, U32 entry, U32 data, U32 mask ) = 0;
   virtual S32 bcm_field_qualify_TunnelTerminated( U32 unit, U32 entry, U8 data, U8 mask ) = 0;
   virtual S32 bcm_field_qualify_VxlanNetworkId( U32 unit, U32 entry, U32 data, U32 mask ) = 0;

   // --- Egress qualifiers
   virtual S32 bcm_field_qualify_DstPort( U32 unit, U32 entry, U32 modId, U32 modIdMask, U32 port,
                                          U32 portMask ) = 0;
   virtual S32 bcm_field_qualify_IpType( U32 unit, U32 entry, bcm_field_IpType_t ipType ) = 0;
   virtual S32 bcm_field_qualify_IngressClassField( U32 unit, U32 entry, U32 data, U32 mask ) = 0;

   // --- Actions; the meaning of the two parameters depends on the action
   virtual S32 bcm_field_action_add( U32 unit, U32 entry, bcm_field_action_t action, U32 param0,
                                     U32 param1 ) = 0;

   // --- Read-back of the written copy
   virtual S32 bcm_field_qualify_SrcVxlanGport_get( U32 unit, U32 entry, U32 * gport ) = 0;
   virtual S32 bcm_field_qualify_PacketRes_get( U32 unit, U32 entry, U32 * data, U32 * mask ) = 0;
   virtual S32 bcm_field_qualify_TunnelTerminated_get( U32 unit, U32 entry, U8 * data,
                                                       U8 * mask ) = 0;
   virtual S32 bcm_field_qualify_VxlanNetworkId_get( U32 unit, U32 entry, U32 * data,
                                                     U32 * mask ) = 0;
   virtual S32 bcm_field_qualify_DstPort_get( U32 unit, U32 entry, U32 * modId, U32 * modIdMask,
                                              U32 * port, U32 * portMask ) = 0;
   virtual S32 bcm_field_qualify_IpType_get( U32 unit, U32 entry, bcm_field_IpType_t * ipType ) = 0;
   virtual S32 bcm_field_qualify_IngressClassField_get( U32 unit, U32 entry, U32 * data,
                                                        U32 * mask ) = 0;
   virtual S32 bcm_field_action_get( U32 unit, U32 entry, bcm_field_action_t action, U32 * param0,
                                     U32 * param1 ) = 0;

   // --- Around every field call
   // Runs immediately before the call, while the activity lock is still held.
   virtual void beforeFieldCall() = 0;
   // Runs after the error line of a failed call has been printed, before the process stops.
   virtual void fieldCallFailed() = 0;

   // --- Values that the SDK release defines
   // The result code that means success of installEntry and reinstallEntry: BCM_E_NONE.
   virtual S32 successCode() const = 0;
   // The SDK's message for a result code.
   virtual std::string errorText( S32 rc ) const = 0;
   // The packet resolution of known L3 multicast: BCM_FIELD_PKT_RES_L3MCKNOWN.
   virtual U32 packetResL3McKnown() const = 0;
   // The gport of the VXLAN virtual port with this index (low 16 bits of a virtual port).
   virtual U32 vxlanGport( U16 vpIndex ) const = 0;

   // --- Port bitmaps
   virtual void pbmpClear( _shr_pbmp & pbmp ) const = 0;
   virtual bool pbmpEqual( _shr_pbmp const & a, _shr_pbmp const & b ) const = 0;
   virtual U32 pbmpCount( _shr_pbmp const & pbmp ) const = 0;

   // --- Any field call, told as values (Shim/OneCallSdk.h). What is added comes last, so that the
   // operations above keep their order in the vtable, which plug-ins are compiled against.
   virtual S32 make( Call & call );
};

// The shim in use; nullptr before the agent has set it.
extern Sdk * sdk_;

}  // namespace Shim
