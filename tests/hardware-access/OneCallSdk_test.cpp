// A shim whose field calls all come to one function, and the way back: a call told as values.
#include <gtest/gtest.h>

#include <string>

#include "ScriptedSdk.h"

namespace OneCallSdkTest {

using Shim::Call;
using Shim::FieldOperation;
using Shim::FieldOperationRow;
using Shim::kFieldOperations;

// The call with the values that the operation passes, counted up from 1.
Call callOf( FieldOperationRow const & row ) {
   Call call{ row.operation, 2, 7, {} };
   std::size_t passed = row.name.ends_with( "_get" ) ? 0 : row.valueCount();
   if ( row.operation == FieldOperation::GetAction ) {
      passed = 1;
   }
   while ( call.values.size() < passed ) {
      call.values.add( static_cast< U32 >( call.values.size() + 1 ) );
   }
   return call;
}

// The call as ScriptedSdk writes it down.
std::string lineOf( Call const & call ) {
   std::string line = std::string( rowOf( call.operation ).name ) + " 2 7";
   for ( std::size_t n = 0; n < call.values.size(); ++n ) {
      line += " " + std::to_string( call.values[ n ] );
   }
   return line;
}

// Sdk::make() calls the operation of the shim that has the call's name; the shim makes a call of it
// again.
TEST( OneCallSdk, EveryCallGoesThroughItsOperationAndComesBackTheSame ) {
   ScriptedSdk sdk;
   for ( FieldOperationRow const & row : kFieldOperations ) {
      Call call = callOf( row );
      std::string const line = lineOf( call );
      std::size_t const passed = call.values.size();
      EXPECT_EQ( sdk.Shim::Sdk::make( call ), 0 );
      EXPECT_EQ( sdk.calls.back(), line );
      ASSERT_TRUE( call.isComplete() ) << row.name;
      for ( std::size_t n = passed; n < call.values.size(); ++n ) {
         EXPECT_EQ( call.values[ n ], 101 + n - passed ) << row.name;
      }
   }
   EXPECT_EQ( sdk.calls.size(), 16U );
}

TEST( OneCallSdk, FailedReadBackAddsNoValues ) {
   ScriptedSdk sdk;
   sdk.onCall = [] { return -7; };
   for ( FieldOperationRow const & row : kFieldOperations ) {
      Call call = callOf( row );
      std::size_t const passed = call.values.size();
      EXPECT_EQ( sdk.Shim::Sdk::make( call ), -7 );
      EXPECT_EQ( call.values.size(), passed ) << row.name;
   }
}

// A shim that answers no read-back.
class SilentSdk final : public ScriptedSdk {
 public:
   S32 make( Call & ) override { return 3; }
};

TEST( OneCallSdk, VariablesStayAsTheyAreWhenNothingIsReadBack ) {
   SilentSdk sdk;
   U32 data = 77;
   U32 mask = 78;
   EXPECT_EQ( sdk.bcm_field_qualify_PacketRes_get( 2, 7, &data, &mask ), 3 );
   EXPECT_EQ( sdk.bcm_field_action_get( 2, 7, bcmFieldActionDrop, &data, &mask ), 3 );
   EXPECT_EQ( data, 77U );
   EXPECT_EQ( mask, 78U );
}

}  // namespace OneCallSdkTest
