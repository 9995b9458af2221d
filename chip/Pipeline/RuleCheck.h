// One frame, checked by the rules of all units.
//
// Each unit that the frame meets makes one ingress lookup, when it is first asked: the arrival's
// always, another's when a copy is for one of its ports. Its mask and class id hold for copies to
// its own ports. Each copy makes one egress lookup on its unit.
#pragma once

#include <Pipeline/Story.h>
#include <Pipeline/Tables.h>

namespace Chip {

// A copy to that port as the egress rules of its unit see it.
EgressFields egressFieldsOf( UnitTables const & unit, VornalTypes::VornalPort port,
                             bcm_field_IpType_t ipType, U16 classId );

class RuleCheck {
 public:
   // The next frame. The tables and the story stay valid until the one after it.
   void start( Tables const & tables, IngressFields const & fields, bcm_field_IpType_t ipType,
               std::vector< IngressStory > & story );
   // The unit's ingress lookup, if it has not been made.
   void enter( Index unit );
   // Whether the rules let a copy out by that port: Sent, or Masked or Dropped and the rule.
   Verdict judge( VornalTypes::VornalPort port, std::optional< RuleKey > & rule );

 private:
   // The unit's winner, with the actions that concern copies.
   struct IngressResult {
      bool isLookedUp = false;
      std::optional< RuleKey > rule{};
      Brum::PerUnitBitmap const * mask = nullptr;
      U16 classId = 0;
   };

   static void applyActions( EntryContent const & rule, IngressResult & result );
   std::optional< RuleKey > dropRule( UnitTables const & unit, VornalTypes::VornalPort port,
                                      U16 classId ) const;

   Tables const * tables_ = nullptr;
   IngressFields fields_{};
   bcm_field_IpType_t ipType_ = bcmFieldIpTypeNonIp;
   std::vector< IngressStory > * story_ = nullptr;
   std::vector< IngressResult > results_;  // by unit
};

}  // namespace Chip
