#pragma once

#include <Expectations/Expected.h>

namespace Expectations {

// The plug-in has marked its own dependency point, or has not.
class PluginReady final : public ExpectedNow {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   Finding check( Evidence const & evidence ) const override;

   bool isReady = true;
};

}  // namespace Expectations
