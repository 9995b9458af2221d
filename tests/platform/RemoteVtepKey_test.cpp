// The key of a remote VTEP: for nearly all of them, as good as the address.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

#include <VornalCentral/RemoteVtepKey.h>

#include "Generators.h"

namespace RemoteVtepKeyTest {

using Pelk::IpGenAddr;
using VornalCentral::getRemoteVtepKeyForIp;
using VornalCentral::RemoteVtepKey;
using Vxlan::SwTunnelGroupId;

IpGenAddr const kLeaf2 = IpGenAddr::ipv4( { 10, 0, 0, 2 } );

TEST( RemoteVtepKey, OfAnAddressHasNoGroupAndTheFirstTunnelInterface ) {
   RemoteVtepKey const key = getRemoteVtepKeyForIp( kLeaf2 );
   EXPECT_TRUE( key.tunnelGroup().isEmpty() );
   EXPECT_EQ( key.vtiNumber(), 1U );
   EXPECT_EQ( key.vtepIp(), kLeaf2 );
   EXPECT_EQ( key, RemoteVtepKey( SwTunnelGroupId(), 1, kLeaf2 ) );
}

TEST( RemoteVtepKey, IsOrderedByGroupThenTunnelInterfaceThenAddress ) {
   IpGenAddr const leaf3 = IpGenAddr::ipv4( { 10, 0, 0, 3 } );
   std::vector< RemoteVtepKey > const ascending = {
      RemoteVtepKey(),
      getRemoteVtepKeyForIp( kLeaf2 ),
      getRemoteVtepKeyForIp( leaf3 ),
      RemoteVtepKey( SwTunnelGroupId(), 2, kLeaf2 ),
      RemoteVtepKey( SwTunnelGroupId( "west" ), 1, kLeaf2 ),
   };
   EXPECT_TRUE( std::is_sorted( ascending.begin(), ascending.end(), std::less_equal<>() ) );
}

TEST( RemoteVtepKey, TextIsTheAddressAndWhatIsUnusual ) {
   IpGenAddr const v6 = IpGenAddr::fromString( "2001:db8::1" );
   EXPECT_EQ( Quelm::textOf( getRemoteVtepKeyForIp( kLeaf2 ) ), "10.0.0.2" );
   EXPECT_EQ( Quelm::textOf( getRemoteVtepKeyForIp( v6 ) ), "2001:db8::1" );
   EXPECT_EQ( Quelm::textOf( RemoteVtepKey( SwTunnelGroupId(), 2, kLeaf2 ) ), "10.0.0.2@2" );
   EXPECT_EQ( Quelm::textOf( RemoteVtepKey( SwTunnelGroupId( "west" ), 1, v6 ) ),
              "2001:db8::1#west" );
   EXPECT_EQ( Quelm::textOf( RemoteVtepKey( SwTunnelGroupId( "far west" ), 2, kLeaf2 ) ),
              "10.0.0.2@2#\"far west\"" );
   EXPECT_EQ( Quelm::textOf( RemoteVtepKey() ), "0.0.0.0@0" );
   EXPECT_EQ( Quelm::fromText< RemoteVtepKey >( "10.0.0.2" ), getRemoteVtepKeyForIp( kLeaf2 ) );
}

TEST( RemoteVtepKey, SaysWhatIsWrongWithAText ) {
   auto const reason = refusal< RemoteVtepKey >;
   EXPECT_EQ( reason( "10.0.0.256@2" ),
              "'10.0.0.256' is not an IP address: '256' is not a number from 0 to 255" );
   EXPECT_EQ( reason( "10.0.0.2@Vxlan2" ),
              "expected a number of type U32 at character 10, found 'Vxlan2'" );
   EXPECT_EQ( reason( "10.0.0.2#" ),
              "expected a name or a quoted string at character 10, found the end of the text" );
   EXPECT_EQ( reason( "10.0.0.2 " ), "expected the end of the text at character 9, found ' '" );
}

RC_GTEST_PROP( RemoteVtepKey, AnyKeyIsReadBack, ( RemoteVtepKey const & key ) ) {
   RC_ASSERT( Quelm::fromText< RemoteVtepKey >( Quelm::textOf( key ) ) == key );
}

RC_GTEST_PROP( RemoteVtepKey, AnyTwoKeysAreOrdered,
               ( RemoteVtepKey const & a, RemoteVtepKey const & b ) ) {
   checkOrderAndHash( a, b );
}

}  // namespace RemoteVtepKeyTest
