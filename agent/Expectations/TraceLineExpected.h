#pragma once

#include <optional>

#include <Expectations/Expected.h>
#include <Quelm/Integers.h>

namespace Expectations {

// Lines traced since the scenario began that contain `text`: `times` of them, or without a number
// at least one.
class TraceLineExpected final : public ExpectedNow {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   std::string handle;
   std::optional< int > level;  // nothing: any level
   std::string text;
   std::optional< U32 > times;
};

}  // namespace Expectations
