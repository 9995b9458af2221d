// The records of the programmed rules, per unit and remote VTEP.
//
// The chip does not know for which VTEP an entry was installed. So the state machine keeps one
// TepIpToEntry a unit: the ingress entry of each remote VTEP, the ports that it masks, the VP index
// that it matches and, in the class-id variant, the egress entries on each shared port. The records
// decide nothing; the code that programs a rule writes them in the same step.
//
// An entry id is never 0. A record that is not there reads as 0, as an all-zero bitmap or as an
// empty reference.
//
// Cost: a look-up in an ordered map. Threads: the activity's.
#pragma once

#include <Brum/PerUnitBitmap.h>
#include <Kiv/Entity.h>
#include <Pelk/IpGenAddr.h>
#include <VornalTypes/VornalPort.h>
#include <VornalTypes/VornalPortList.h>

namespace Vornal {

// The egress entries of one remote VTEP on one unit.
class ESPortAndEFPEntryIdList : public Kiv::Entity {
   KIV_ENTITY( ESPortAndEFPEntryIdList, Kiv::Entity )
   KIV_KEY( tepIp, Pelk::IpGenAddr )
   // The entry that drops the VTEP's marked frames on that port.
   KIV_COLLECTION( efpEntryId, VornalTypes::VornalPort, U32, efpEntryIds )
   // The shared ports for which entries were last programmed.
   KIV_VALUE( esPortList, VornalTypes::VornalPortList )

   explicit ESPortAndEFPEntryIdList( Pelk::IpGenAddr const & tepIp ) : tepIp_( tepIp ) {}
};

// Everything that is programmed on one unit.
class TepIpToEntry : public Kiv::Entity {
   KIV_ENTITY( TepIpToEntry, Kiv::Entity )
   KIV_KEY( unit, U16 )
   // The ingress entry.
   KIV_COLLECTION( entryId, Pelk::IpGenAddr, U32, entryIds )
   // The shared ports that the ingress entry masks.
   KIV_COLLECTION( esPbmp, Pelk::IpGenAddr, Brum::PerUnitBitmap )
   KIV_MEMBERS( esPortAndEFPEntryIdList, Pelk::IpGenAddr, ESPortAndEFPEntryIdList )
   // The VP index that the ingress entry matches.
   KIV_COLLECTION( vpIndex, Pelk::IpGenAddr, U16 )

   explicit TepIpToEntry( U16 unit ) : unit_( unit ) {}
};

}  // namespace Vornal
