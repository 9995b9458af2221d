// The base of all expectations.
//
// An expectation is one class with its fields, words, description and comparison in one pair of
// files, and a row of Expectations/Table.cpp. It is default-built, and besides the functions of
// Expected it has
//
//    void read( Reading & reading, Value const & value );   // reads the value under its word
//    static std::vector< WordList > vocabulary();           // the words of its mappings, if any
//    static std::string shape();                            // of this value, unless its word
//                                                           // names a mapping or a choice
//
// A word that stands for several kinds has functions for both instead of these.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Scenario {
class Reading;
struct Value;
struct WordList;
}  // namespace Scenario

namespace Story {
class Observer;
}  // namespace Story

namespace Expectations {

using Scenario::Reading;
using Scenario::Value;
using Scenario::WordList;

struct Evidence;

// The result of a comparison: whether it is as expected, and the actual state in words ("it is not
// ready").
struct Finding {
   bool isAsExpected = false;
   std::string found;
};

class Expected {
 public:
   virtual ~Expected() = default;

   static std::vector< WordList > vocabulary();
   static std::string shape();

   // In one line for people: "plug-in ready".
   virtual std::string description() const = 0;

   // Whether it needs a switch that forwards.
   virtual bool isAboutFrames() const { return false; }

   // Tells the observer the result, or what a later event must show. `place` is its own, as
   // "FILE:LINE".
   virtual void tell( Evidence const & evidence, std::string const & place,
                      Story::Observer & observer ) const = 0;
};

// It holds now, or it does not.
class ExpectedNow : public Expected {
 public:
   void tell( Evidence const & evidence, std::string const & place,
              Story::Observer & observer ) const final;

   // A missing entity is a finding. An unknown attribute throws Quelm::AccessError, and a key of
   // another type Quelm::TextError.
   virtual Finding check( Evidence const & evidence ) const = 0;
};

struct Expectation {
   std::shared_ptr< Expected const > what;
   int line = 0;

   // The expectation, if it is of that kind.
   template< typename Kind > Kind const * as() const {
      return dynamic_cast< Kind const * >( what.get() );
   }
};

}  // namespace Expectations
