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

// The lowest bit of a qualifier's data, or of an action's number, tips over.
struct PartFlips {
   RulePart part;
};

struct QualifierMaskIs {
   Chip::Qualifier qualifier = Chip::Qualifier::SrcVxlanGport;
   U32 mask = 0;
};

struct EgressMaskIs {
   Brum::PerUnitBitmap ports;
};

struct PriorityIs {
   std::optional< U32 > priority;  // nothing: the group's default
};

struct PartGoes {
   RulePart part;
};

// What becomes of the whole entry.
enum class EntryFate {
   erased,     // out of the hardware; it stays in the group, as staged
   destroyed,  // out of the group as well
   copied,     // there is one more that is written as it is
};

// The rule exchanges its gport with another of the group on the unit.
struct GportsSwap {
   RuleNamed with;
};

// The hardware drifts: a rule changes in the chip behind the plug-in's back.
class DriftStep final : public Step {
 public:
   using Change = std::variant< PartFlips, QualifierMaskIs, EgressMaskIs, PriorityIs, PartGoes,
                                EntryFate, GportsSwap >;

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
