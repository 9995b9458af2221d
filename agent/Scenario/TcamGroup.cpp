#include <Scenario/Shape.h>
#include <Scenario/TcamGroup.h>

namespace Scenario {

Choices< TcamGroup > const & tcamGroups() {
   static Choices< TcamGroup > const choices{
      { "tcam-group", "A field-processor group: ingress (157) or egress (45)." },
      { { "ingress", TcamGroup::ingress }, { "egress", TcamGroup::egress } }
   };
   return choices;
}

std::string_view nameOf( TcamGroup group ) {
   return tcamGroups().nameOf( group );
}

Vornal::TcamGroupAssignment assignmentOf( TcamGroup group ) {
   return group == TcamGroup::ingress ? Vornal::kIfpLocalBiasGroup : Vornal::kEfpLocalBiasGroup;
}

}  // namespace Scenario
