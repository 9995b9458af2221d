// The variants of the machine, for the tests that hold for each of them.
#pragma once

#include <gtest/gtest.h>

#include "LocalBiasSwitch.h"

namespace Support {

inline auto const bothVariants = testing::Values( Variant::EgressMask, Variant::I2EClassId );

// The name of a test's variant.
inline std::string nameOfVariant( testing::TestParamInfo< Variant > const & test ) {
   return test.param == Variant::EgressMask ? "EgressMask" : "I2EClassId";
}

// A switch for a machine of either variant.
class EitherVariant : public testing::TestWithParam< Variant > {
 protected:
   // Ethernet1, on port 5, shared with 10.0.0.2, which has a virtual port.
   void shareEthernet1() {
      leaf.shareEthernet1();
      leaf.vtepIs( "10.0.0.2", 0x10002 );
   }

   LocalBiasSwitch leaf;
};

}  // namespace Support
