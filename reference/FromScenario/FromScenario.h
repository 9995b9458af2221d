// The one adapter between scenarios and the reference: takes the values of a scenario's model, and
// nothing that the program does with them.
//
// | taken                                   | becomes                                     |
// |-----------------------------------------|---------------------------------------------|
// | Scenario::Switch, the feature file      | Device                                      |
// | Scenario::Change, Replacement           | events                                      |
// | Scenario::Forwarding                    | Forwarding                                  |
// | the steps of Steps/ that change a switch | turns of events, or why there is no opinion |
//
// It decides nothing about rules.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <Frames/Frames.h>
#include <History/Event.h>
#include <Scenario/Scenario.h>

namespace Reference {

struct StepTold {
   std::vector< std::vector< Event > > turns;
   std::map< Interface, bool > isDesignated;
   std::string noOpinion;  // why, from this step on
};

struct Told {
   Device device;
   std::optional< Forwarding > forwarding;
   std::vector< Event > before;  // the plug-in is loaded
   std::set< Vtep > requestsBefore;
   std::vector< StepTold > steps;
   std::string noOpinion;  // why, on the whole scenario
};

Told told( Scenario::Model const & scenario );

}  // namespace Reference
