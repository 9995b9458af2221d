// The shape of a step.
//
// A step is one class in one pair of files, and a row of Steps/Table.cpp. It is default-built, and
// has besides what Scenario/Action.h asks for
//
//    void read( Reading & reading, Value const & value );   // what stands under its word
//    static std::vector< WordList > vocabulary();           // the words of its mappings, if any
//    static std::string shape();                            // of what stands under its word,
//                                                           // unless that is a mapping or a
//                                                           // choice which its word names
//
// What it does to the published state it tells in follow() too, so that Scenario/Course.h can go on
// with it. A step that changes something within one turn is a TurnPart; `turn` can hold it.
//
// Failures: a problem with the scenario is told to the reading. What shows only on the switch, such
// as an attribute that is not there, is a Quelm::Error of the turn (Steps/Context.h).
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
   // In a turn of its own.
   void queue( Context const & context, int line ) const override;

   // To be called within a turn.
   virtual void change( Context const & context ) const = 0;
};

}  // namespace Steps
