// The base of all steps.
//
// A step is one class in one pair of files, and a row of Steps/Table.cpp. It is default-built, and
// besides the functions of Scenario/Action.h it has
//
//    void read( Reading & reading, Value const & value );   // reads the value under its word
//    static std::vector< WordList > vocabulary();           // the words of its mappings, if any
//    static std::string shape();                            // of this value, unless its word
//                                                           // names a mapping or a choice
//
// follow() tells Scenario/Course.h how the step changes the published state. A step that changes
// something within one turn is a TurnPart; `turn` can hold it.
//
// Failures: the reading gets every problem with the scenario. A mistake that shows only on the
// switch, such as a missing attribute, is a Quelm::Error of the turn (Steps/Context.h).
#pragma once

#include <string>
#include <vector>

#include <Scenario/Action.h>

namespace Scenario {
class Reading;
struct Value;
struct WordList;
}  // namespace Scenario

namespace Steps {

using Scenario::Reading;
using Scenario::Value;
using Scenario::WordList;

class Step : public Scenario::Action {
 public:
   static std::vector< WordList > vocabulary();
   static std::string shape();
};

class TurnPart : public Step {
 public:
   Scenario::AfterRestart afterRestart() const override { return Scenario::AfterRestart::lasts; }

   // Queues a turn of its own.
   void queue( Context const & context, int line ) const override;

   // To be called within a turn. `line` is the line of the step in the scenario, or of its element
   // in a turn.
   virtual void change( Context const & context, int line ) const = 0;
};

}  // namespace Steps
