// What the plug-in has recorded of its rules: a copy at one moment, read by name through the
// generic interface of its state machine.
//
// Records are what the audit judges, never what it goes by. An attribute that the state machine
// does not have (each variant has its own) reads as empty.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include <Audit/WantedRules.h>
#include <StateDatabase/Directory.h>
#include <VornalTypes/VornalPortList.h>

namespace Audit {

// An entry id, and where it is recorded: "tepIpToEntry[0]/entryId[10.0.0.2]".
struct RecordedEntry {
   U32 id = 0;
   std::string place;
};

// A VTEP on a unit.
struct VtepOn {
   U16 unit = 0;
   Pelk::IpGenAddr vtep;

   friend auto operator<=>( VtepOn const &, VtepOn const & ) = default;
};

struct Records {
   bool isMachine = false;      // there is a state machine
   bool isInitialized = false;  // it programs rules
   bool isExhausted = false;    // it has been refused an entry for a VTEP, and not recovered since

   std::map< RuleFor, RecordedEntry > entries;
   std::set< U16 > units;  // that have a record of their VTEPs
   std::map< VtepOn, Brum::PerUnitBitmap > masks;
   std::map< VtepOn, U16 > vpIndices;
   std::map< VtepOn, VornalTypes::VornalPortList > egressPorts;
   std::map< Pelk::IpGenAddr, VornalCommon::ClassId > classIds;
   std::map< Pelk::IpGenAddr, U32 > classIdUsers;  // units whose ingress rule carries the class id
   std::map< L3::VrfName, U32 > queue;             // VNIs that wait for room

   bool hasQueued( U32 vni ) const;
};

// The state machine that a mounter among these entities holds, or an empty reference.
Quelm::Ptr< Kiv::Entity > machineIn( StateDatabase::Directory::Entities const & entities );

// The records of the plug-in whose mounter is among these entities. A per-VNI entry, which is
// recorded without its unit, counts as one of `lastUnit`.
Records recordsOf( StateDatabase::Directory::Entities const & entities, U16 lastUnit );

}  // namespace Audit
