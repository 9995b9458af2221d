// The audit: whether the rules are as they should be, seen from outside of the plug-in.
//
// Three things are compared, and none of them is taken on trust:
//
//    published state ── WantedRules ──► the rules that the state calls for
//    the plug-in's state machine ─────► its records                  (Records.h)
//    the chip ────────────────────────► the written entries          (Matching.h)
//
// Wherever two of them do not agree there is a Story::Difference, with the state behind it in
// words. The audit repairs nothing, stops nothing, makes no hardware call and changes nothing of
// what it reads.
//
// Not every rule that is missing is a fault. A group without room, a queue that waits for it, a
// class id that has not been granted, a class id that the allocator took back while rules carry it,
// and what tunnel interfaces leave behind are listed as well, as kinds that are known
// (Difference.h): a switch with nothing but these is in step.
//
// The plug-in's own pass, its operation handleVerify, is another matter: it compares less, and
// stops the process at the first thing that it finds.
//
// Cost: as Matching.h. Threads: the activity's, while nothing is under way: between two turns the
// three may differ without fault.
#pragma once

#include <map>
#include <set>
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
   U32 rules = 0;    // called for by the state
   U32 entries = 0;  // in the chip
   // By unit, group and entry; those of no single unit come first.
   std::vector< Story::Difference > differences;
   // The VTEPs that a rule is missing for, known or not: some of their frames arrive twice.
   std::set< Pelk::IpGenAddr > unprotected;

   // How many of them are not known.
   U32 faults() const;
   bool isInStep() const { return faults() == 0; }
};

// An entry of the chip that the state calls for.
struct ExpectedEntry {
   RuleFor what{};
   std::string because;  // in words
};

class Auditor {
 public:
   // The published entities are there already, and are watched from now on. Finder and units must
   // outlive the auditor.
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
