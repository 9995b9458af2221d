// The plug-in's records of its rules: a copy at one moment, read by name through the generic
// interface of its state machine.
//
// The audit checks the records and never relies on them. Each variant of the state machine has its
// own attributes; a missing attribute reads as empty.
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
   bool isMachine = false;      // the state machine exists
   bool isInitialized = false;  // it programs rules
   bool isExhausted = false;    // an entry for a VTEP was refused, and it has not recovered since

   std::map< RuleFor, RecordedEntry > entries;
   std::set< U16 > units;  // units with a record of their VTEPs
   std::map< VtepOn, Brum::PerUnitBitmap > masks;
   std::map< VtepOn, U16 > vpIndices;
   std::map< VtepOn, VornalTypes::VornalPortList > egressPorts;
   std::map< Pelk::IpGenAddr, VornalCommon::ClassId > classIds;
   std::map< Pelk::IpGenAddr, U32 > classIdUsers;  // units whose ingress rule carries the class id
   std::map< L3::VrfName, U32 > queue;             // VNIs that wait for room

   bool hasQueued( U32 vni ) const;
};

// The state machine of a mounter among these entities, or an empty reference.
Quelm::Ptr< Kiv::Entity > machineIn( StateDatabase::Directory::Entities const & entities );

// The records of the plug-in whose mounter is among these entities. The plug-in records per-VNI
// entries without their unit; they count as entries of `lastUnit`.
Records recordsOf( StateDatabase::Directory::Entities const & entities, U16 lastUnit );

}  // namespace Audit
