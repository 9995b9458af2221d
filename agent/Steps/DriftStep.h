#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <Brum/PerUnitBitmap.h>
#include <FieldProcessor/Fields.h>
#include <Scenario/TcamGroup.h>
#include <Steps/Step.h>

namespace Steps {

// A rule of a group on a unit: its entry id, or a part of its name that no other rule there has.
using RuleNamed = std::variant< U32, std::string >;

using RulePart = std::variant< Chip::Qualifier, Chip::Action >;

// Flips the lowest bit of a qualifier's data, or of an action's number.
struct PartFlips {
   RulePart part;
};

struct QualifierMaskChanges {
   Chip::Qualifier qualifier = Chip::Qualifier::SrcVxlanGport;
   U32 mask = 0;
};

struct EgressMaskChanges {
   Brum::PerUnitBitmap ports;
};

struct PriorityChanges {
   std::optional< U32 > priority;  // nothing: the group's default
};

struct PartGoes {
   RulePart part;
};

// A change of the whole entry.
enum class EntryFate {
   erased,     // removed from the hardware; it stays in the group, as staged
   destroyed,  // removed from the group as well
   copied,     // a copy is written
};

// The rule exchanges its gport with another of the group on the unit.
struct GportsSwap {
   RuleNamed with;
};

// The hardware drifts: a rule changes in the chip without the plug-in's knowledge.
class DriftStep final : public Step {
 public:
   using Change = std::variant< PartFlips, QualifierMaskChanges, EgressMaskChanges, PriorityChanges,
                                PartGoes, EntryFate, GportsSwap >;

   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void queue( Context const & context, int line ) const override;

   Scenario::TcamGroup group = Scenario::TcamGroup::ingress;
   U16 unit = 0;
   RuleNamed rule;
   Change change;
};

}  // namespace Steps
