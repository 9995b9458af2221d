// TCAM entry managers: they hand out, write and take back the entries of a field-processor group.
//
// The life of an entry, on one unit:
//
//    getEntry       the entry exists, in the group and empty; no frame can match it
//    qualifiers and actions are added: through the shim, or as an egress mask through the manager
//    setPriorityForEntry   where the rule has a priority
//    installEntry   the entry is written to the hardware
//    reinstallEntry a changed entry is written again
//    releaseEntry   the entry leaves the hardware, and its room can be used again
//
// Contracts. getEntry returns 0 when the group has no room on that unit; that is not an error. The
// unit's `exhausted` flag is then set, and a release that makes room clears it; both are notified.
// Ids are never 0, and releasing id 0 does nothing. installEntry and reinstallEntry return the
// SDK's code; anything but the shim's success code is failure. An egress mask is staged by the add
// and update operations and in force once the entry is (re)installed. Each agent's managers
// say for themselves whether an id is used again, and how they treat an unknown id or a failed
// install.
//
// Precedence within a group: the highest priority wins, and between equals the entry obtained
// first. An entry whose priority was never set has the group's default priority, above all set
// explicitly.
//
// The managers belong to the agent. Threads: the activity's.
#pragma once

#include <string>

#include <Kiv/Entity.h>
#include <Shim/Sdk.h>
#include <VornalTcam/RequestKey.h>

namespace Vornal {

// Selects a field-processor group.
using TcamGroupAssignment = U8;
constexpr TcamGroupAssignment kIfpLocalBiasGroup = 157;  // ingress
constexpr TcamGroupAssignment kEfpLocalBiasGroup = 45;   // egress

// The result of getEgressMaskActionPbmp.
class EgressMaskResult {
 public:
   EgressMaskResult( S32 rc, _shr_pbmp const & pbmp ) : rc_( rc ), pbmp_( pbmp ) {}

   S32 rc() const { return rc_; }  // 0 on success
   _shr_pbmp const & pbmp() const { return pbmp_; }

 private:
   S32 rc_;
   _shr_pbmp pbmp_;
};

class VornalTcamEntryManager : public Kiv::Entity {
   KIV_ENTITY( VornalTcamEntryManager, Kiv::Entity )
   KIV_KEY( group, TcamGroupAssignment )
   KIV_COLLECTION( exhausted, U16, bool )  // by unit

   explicit VornalTcamEntryManager( TcamGroupAssignment group ) : group_( group ) {}

   // A new entry for the rule that `name` describes; 0 when the group is full on this unit.
   virtual U32 getEntry( U32 unit, std::string const & name,
                         VornalTcam::RequestKey const & key ) = 0;
   virtual S32 installEntry( U32 unit, U32 entryId ) = 0;
   virtual S32 reinstallEntry( U32 unit, U32 entryId ) = 0;
   virtual void releaseEntry( U32 unit, U32 entryId ) = 0;
   virtual void setPriorityForEntry( U32 unit, U32 entryId, U32 priority ) = 0;

   // The egress port mask: frames that the entry matches do not leave by the ports in `pbmp`.
   virtual void addEgressMaskAction( U32 unit, U32 entryId, _shr_pbmp const & pbmp ) = 0;
   virtual void updateEgressMaskAction( U32 unit, U32 entryId, _shr_pbmp const & pbmp ) = 0;
   virtual EgressMaskResult getEgressMaskActionPbmp( U32 unit, U32 entryId ) = 0;
};

// The manager of a group that several users share and none has a reserved part of.
class VornalUnboundedTcamEntryManager : public VornalTcamEntryManager {
   KIV_ENTITY( VornalUnboundedTcamEntryManager, VornalTcamEntryManager )

   using VornalTcamEntryManager::VornalTcamEntryManager;
};

// All groups' managers.
class VornalTcamGroupManager : public Kiv::NamedEntity {
   KIV_ENTITY( VornalTcamGroupManager, Kiv::NamedEntity )
   KIV_MEMBERS( entryManager, TcamGroupAssignment, VornalUnboundedTcamEntryManager )

   using NamedEntity::NamedEntity;

   // The manager registered for that group, or an empty reference. Creates nothing.
   virtual Quelm::Ptr< VornalUnboundedTcamEntryManager > unboundedEntryManager(
      TcamGroupAssignment assignment ) {
      return entryManager( assignment );
   }
};

}  // namespace Vornal
