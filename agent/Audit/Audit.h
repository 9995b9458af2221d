// The audit checks from outside of the plug-in whether the chip has the expected rules.
//
// It compares three things and trusts none of them:
//
//    published state ── WantedRules ──► the expected rules
//    the plug-in's state machine ─────► its records                  (Records.h)
//    the chip ────────────────────────► the written entries          (Matching.h)
//
// Wherever two of them disagree, the audit reports a Story::Difference with the reason in the
// state. The audit only reads: it repairs nothing, stops nothing and makes no hardware call.
//
// A missing rule can have a known cause: a group without room, a queue that waits for room, a class
// id that the allocator has not granted or has taken back, rules of a withdrawn tunnel interface.
// The audit lists such differences under kinds that are known (Story/Difference.h). A switch with
// known differences only is in sync.
//
// The plug-in has a pass of its own, the operation handleVerify. It compares less, and stops the
// process at the first difference.
//
// Cost: as Matching.h. Threads: the activity's, between two turns while the activity is idle.
// During a turn the three may differ without fault.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <Audit/GrantHistory.h>
#include <Audit/TunnelHistory.h>
#include <Audit/WantedRules.h>
#include <FieldProcessor/RuleKey.h>
#include <FieldProcessor/Unit.h>
#include <Pelk/IpGenAddr.h>
#include <StateDatabase/Finder.h>
#include <Story/Difference.h>

namespace Audit {

struct Report {
   U32 rules = 0;    // expected by the state
   U32 entries = 0;  // in the chip
   // Sorted by unit, group and entry; differences without a unit come first.
   std::vector< Story::Difference > differences;
   // VTEPs that lack a rule, for a known cause or not: some of their frames arrive twice. Each with
   // the reason in words.
   std::map< Pelk::IpGenAddr, std::string > unprotected;
   // Expected rules that are missing because their group had no room for them.
   std::vector< RuleFor > withoutRoom;

   // The number of differences that are not known.
   U32 faults() const;
   bool isInSync() const { return faults() == 0; }
};

// An entry of the chip that the state calls for.
struct ExpectedEntry {
   RuleFor what{};
   std::string because;  // in words
};

class Auditor {
 public:
   // Watches the published entities, which must exist already. Finder and units must outlive the
   // auditor.
   Auditor( StateDatabase::Finder const & finder, Chip::Units const & units );

   // The published state, with what the past adds to it.
   State state() const;
   Report report() const;

   // The entries that are expected rules, each with the state behind it.
   std::map< Chip::RuleKey, ExpectedEntry > expectedEntries() const;

 private:
   StateDatabase::Finder const & finder_;
   Chip::Units const & units_;
   TunnelHistory tunnels_;
   GrantHistory grants_;
};

}  // namespace Audit
