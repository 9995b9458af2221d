#pragma once

#include <Expectations/Expected.h>
#include <Scenario/TcamGroup.h>

namespace Expectations {

// The groups whose entry managers the plug-in has asked for so far, in order.
class TcamGroupsAskedFor final : public ExpectedNow {
 public:
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   std::vector< Scenario::TcamGroup > groups;
};

}  // namespace Expectations
