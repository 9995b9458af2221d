// The shape of an expectation.
//
// An expectation is a class with its fields, its words, its description and its comparison in one
// pair of files, and a row of Expectations/Table.cpp. It is default-built, and has besides what
// Expected asks for
//
//    void read( Reading & reading, Value const & value );   // what stands under its word
//    static std::vector< WordList > vocabulary();           // the words of its mappings, if any
//    static std::string shape();                            // of what stands under its word,
//                                                           // unless that is a mapping or a
//                                                           // choice which its word names
//
// A word that stands for several kinds has functions for both instead.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace Scenario {
class Reading;
struct Value;
struct WordList;
}  // namespace Scenario

namespace Expectations {

using Scenario::Reading;
using Scenario::Value;
using Scenario::WordList;

struct Evidence;

// What was found: whether it is as expected, and what there is, in words ("it is not ready").
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

   // Whether it needs a switch that is told how to forward.
   virtual bool isAboutFrames() const { return false; }

   // An entity that is not there is a finding; an attribute that its type does not have throws
   // Quelm::AccessError, and a key that is not of its type Quelm::TextError.
   virtual Finding check( Evidence const & evidence ) const = 0;
};

struct Expectation {
   std::shared_ptr< Expected const > what;
   int line = 0;

   // What is expected, if it is of that kind.
   template< typename Kind > Kind const * as() const {
      return dynamic_cast< Kind const * >( what.get() );
   }
};

}  // namespace Expectations
