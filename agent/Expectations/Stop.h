#pragma once

#include <Expectations/Expected.h>

namespace Expectations {

// The next step stops the process of the plug-in, at an assertion or by an exception.
class Stop final : public Expected {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void tell( Evidence const & evidence, std::string const & place,
              Story::Observer & observer ) const override;

   std::string assertion;  // its expression; empty: an exception stops it
   std::string function;   // of the assertion, as Story::Assertion::isIn() takes it
   std::string exception;  // its text
};

}  // namespace Expectations
