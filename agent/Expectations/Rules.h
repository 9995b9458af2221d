#pragma once

#include <optional>
#include <variant>

#include <Expectations/Expected.h>
#include <Scenario/TcamGroup.h>

namespace Expectations {

// A qualifier or an action of a rule, by its short name (Chip::nameOf), with its data or the ports
// of a port mask; without numbers any will do.
struct RuleFieldWanted {
   std::string name;
   std::optional< std::vector< U32 > > numbers;
};

// The plug-in's rules in the group, on one unit or on all of them, that match the other members:
// `count` of them, or without a count at least one.
class RulesLike final : public ExpectedNow {
 public:
   struct DefaultPriority {};

   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   Scenario::TcamGroup group = Scenario::TcamGroup::ingress;
   std::optional< U16 > unit;
   std::string name;  // contained in the rule's name
   std::optional< bool > isWritten;
   std::optional< std::variant< DefaultPriority, U32 > > priority;
   std::vector< RuleFieldWanted > qualifiers;
   std::vector< RuleFieldWanted > actions;
   bool doesNothing = false;  // it has no action
   std::optional< U32 > count;
};

}  // namespace Expectations
