// A chip of one unit, and the kinds of rules that a plug-in writes to it.
#pragma once

#include <Board/Board.h>
#include <FieldProcessor/Gport.h>

namespace Bench {

class ProgrammedChip {
 public:
   // Each group has room for that many rules.
   explicit ProgrammedChip( U32 capacity,
                            Chip::LookupEngine lookup = Chip::LookupEngine::TupleSpace )
         : board( { { { 0,
                        0,
                        { { Vornal::kIfpLocalBiasGroup, capacity },
                          { Vornal::kEfpLocalBiasGroup, capacity } } } },
                    lookup } ) {}

   // Frames from tunnels with that packet resolution: nothing is done.
   void addExemption( U32 packetRes ) {
      U32 const id = ingress->getEntry( 0, "no-op", {} );
      board.sdk().bcm_field_qualify_PacketRes( 0, id, packetRes, 0xff );
      board.sdk().bcm_field_qualify_TunnelTerminated( 0, id, 1, 1 );
      ingress->installEntry( 0, id );
   }
   void addExemptions() {
      addExemption( BCM_FIELD_PKT_RES_L2UC );
      addExemption( BCM_FIELD_PKT_RES_L3UCKNOWN );
   }
   // Frames of a VNI with the packet resolution of known L3 multicast: nothing is done.
   void addPerVni( U32 vni ) {
      U32 const id = ingress->getEntry( 0, "no-op", {} );
      board.sdk().bcm_field_qualify_VxlanNetworkId( 0, id, vni, kExact );
      board.sdk().bcm_field_qualify_PacketRes( 0, id, board.sdk().packetResL3McKnown(), kExact );
      ingress->setPriorityForEntry( 0, id, 2 );
      ingress->installEntry( 0, id );
   }
   // Frames of a VTEP: an egress mask without ports.
   void addMaskOfVtep( U16 vpIndex ) {
      U32 const id = fromVtep( vpIndex );
      ingress->setPriorityForEntry( 0, id, 1 );
      ingress->addEgressMaskAction( 0, id, {} );
      ingress->installEntry( 0, id );
   }
   // Frames of a VTEP: they get the VTEP's index as class id.
   void addClassOfVtep( U16 vpIndex ) {
      U32 const id = fromVtep( vpIndex );
      board.sdk().bcm_field_action_add( 0, id, bcmFieldActionEgressClassSelect,
                                        BCM_FIELD_EGRESS_CLASS_SELECT_NEW, 0 );
      board.sdk().bcm_field_action_add( 0, id, bcmFieldActionNewClassId, vpIndex, 0 );
      ingress->installEntry( 0, id );
   }
   // Copies of a class for a port: they are dropped.
   void addDrop( U16 classId, U32 port ) {
      U32 const id = egress->getEntry( 0, "drop", {} );
      board.sdk().bcm_field_qualify_DstPort( 0, id, 0, kExact, port, kExact );
      board.sdk().bcm_field_qualify_IpType( 0, id, bcmFieldIpTypeAny );
      board.sdk().bcm_field_qualify_IngressClassField( 0, id, classId, kExact );
      board.sdk().bcm_field_action_add( 0, id, bcmFieldActionDrop, 0, 0 );
      egress->installEntry( 0, id );
   }

   Chip::Board board;
   Quelm::Ptr< Chip::SoftTcamEntryManager > ingress =
      board.entryManager( Vornal::kIfpLocalBiasGroup );
   Quelm::Ptr< Chip::SoftTcamEntryManager > egress =
      board.entryManager( Vornal::kEfpLocalBiasGroup );

 private:
   static constexpr U32 kExact = BCM_FIELD_EXACT_MATCH_MASK;

   U32 fromVtep( U16 vpIndex ) {
      U32 const id = ingress->getEntry( 0, "from vtep", {} );
      board.sdk().bcm_field_qualify_SrcVxlanGport( 0, id, Chip::vxlanGportOf( vpIndex ) );
      return id;
   }
};

}  // namespace Bench
