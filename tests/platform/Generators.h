// Generated values of the platform's value types, for tests over all of them.
#pragma once

#include <rapidcheck.h>

#include <array>
#include <string>

#include <Brum/PerUnitBitmap.h>
#include <L3/VrfName.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <Quelm/Text.h>
#include <VornalCentral/RemoteVtepKey.h>
#include <VornalCommon/ClassId.h>
#include <VornalTypes/VornalPort.h>
#include <VornalTypes/VornalPortList.h>
#include <Vxlan/SwTunnelGroupId.h>
#include <Vxlan/VniExtOrNone.h>

namespace rc {

template<> struct Arbitrary< Pelk::IpGenAddr > {
   static Gen< Pelk::IpGenAddr > arbitrary() {
      // Runs of zeros are what the text form of an IPv6 address is about: half the bytes are zero.
      auto const byte = gen::oneOf( gen::just( U8{ 0 } ), gen::arbitrary< U8 >() );
      return gen::oneOf( gen::map( gen::container< std::array< U8, 4 > >( byte ),
                                   &Pelk::IpGenAddr::ipv4 ),
                         gen::map( gen::container< std::array< U8, 16 > >( byte ),
                                   &Pelk::IpGenAddr::ipv6 ) );
   }
};

template<> struct Arbitrary< Pelk::IntfId > {
   static Gen< Pelk::IntfId > arbitrary() {
      auto const number = gen::map( gen::inRange( 0U, Pelk::IntfId::kHighestNumber + 1 ),
                                    []( U32 n ) { return std::to_string( n ); } );
      auto const slash = gen::map( number, []( std::string const & n ) { return "/" + n; } );
      auto const more = gen::oneOf( gen::just( std::string() ), slash );
      auto const ethernet = gen::map( gen::tuple( number, more, more ), []( auto const & numbers ) {
         return "Ethernet" + std::get< 0 >( numbers ) + std::get< 1 >( numbers ) +
                std::get< 2 >( numbers );
      } );
      auto const others =
         gen::map( gen::pair( gen::element< std::string >( "Loopback", "Management", "Port-Channel",
                                                           "Vlan", "Vxlan" ),
                              number ),
                   []( auto const & name ) { return name.first + name.second; } );
      return gen::map( gen::oneOf( gen::just( std::string() ), ethernet, others ),
                       &Pelk::IntfId::fromString );
   }
};

template<> struct Arbitrary< L3::VrfName > {
   static Gen< L3::VrfName > arbitrary() {
      return gen::construct< L3::VrfName >( gen::arbitrary< std::string >() );
   }
};

template<> struct Arbitrary< Vxlan::SwTunnelGroupId > {
   static Gen< Vxlan::SwTunnelGroupId > arbitrary() {
      return gen::construct< Vxlan::SwTunnelGroupId >( gen::arbitrary< std::string >() );
   }
};

template<> struct Arbitrary< Vxlan::VniExtOrNone > {
   static Gen< Vxlan::VniExtOrNone > arbitrary() {
      auto const number = gen::oneOf( gen::just( U32{ Vxlan::VniExtOrNone::kNone } ),
                                      gen::inRange< U32 >( 0, Vxlan::VniExtOrNone::kNone + 1 ) );
      return gen::construct< Vxlan::VniExtOrNone >( number );
   }
};

template<> struct Arbitrary< VornalCommon::ClassId > {
   static Gen< VornalCommon::ClassId > arbitrary() {
      return gen::construct< VornalCommon::ClassId >( gen::arbitrary< U16 >() );
   }
};

template<> struct Arbitrary< VornalTypes::VornalPort > {
   static Gen< VornalTypes::VornalPort > arbitrary() {
      return gen::construct< VornalTypes::VornalPort >( gen::inRange< U16 >( 0, 4 ),
                                                        gen::inRange< U16 >( 0, 1024 ),
                                                        gen::arbitrary< U16 >() );
   }
};

template<> struct Arbitrary< VornalTypes::VornalPortList > {
   static Gen< VornalTypes::VornalPortList > arbitrary() {
      return gen::map( gen::arbitrary< std::vector< VornalTypes::VornalPort > >(),
                       []( std::vector< VornalTypes::VornalPort > const & ports ) {
                          VornalTypes::VornalPortList list;
                          for ( VornalTypes::VornalPort const & port : ports ) {
                             list.portIs( port );
                          }
                          return list;
                       } );
   }
};

template<> struct Arbitrary< Brum::PerUnitBitmap > {
   static Gen< Brum::PerUnitBitmap > arbitrary() {
      auto const bits = gen::container< std::vector< U32 > >(
         gen::inRange< U32 >( 0, Brum::PerUnitBitmap::kBits ) );
      return gen::map( bits, []( std::vector< U32 > const & numbers ) {
         Brum::PerUnitBitmap bitmap;
         for ( U32 const n : numbers ) {
            bitmap.bitSet( n );
         }
         return bitmap;
      } );
   }
};

template<> struct Arbitrary< VornalCentral::RemoteVtepKey > {
   static Gen< VornalCentral::RemoteVtepKey > arbitrary() {
      return gen::construct< VornalCentral::RemoteVtepKey >(
         gen::oneOf( gen::just( Vxlan::SwTunnelGroupId() ),
                     gen::arbitrary< Vxlan::SwTunnelGroupId >() ),
         gen::oneOf( gen::just( U32{ 1 } ), gen::arbitrary< U32 >() ),
         gen::arbitrary< Pelk::IpGenAddr >() );
   }
};

}  // namespace rc

// What the reader of a text that is not the text form of T is told; empty when T could be read.
template< typename T > std::string refusal( std::string_view text ) {
   try {
      Quelm::fromText< T >( text );
      return {};
   } catch ( Quelm::TextError const & error ) {
      return error.what();
   }
}

// That of two values exactly one of <, == and > holds, and that equal values have equal hashes.
template< typename T > void checkOrderAndHash( T const & a, T const & b ) {
   RC_ASSERT( ( a < b ) + ( a == b ) + ( a > b ) == 1 );
   RC_ASSERT( ( a < b ) == ( b > a ) );
   T const again = Quelm::fromText< T >( Quelm::textOf( a ) );
   RC_ASSERT( again == a );
   RC_ASSERT( std::hash< T >()( again ) == std::hash< T >()( a ) );
}
