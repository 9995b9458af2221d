// Vxlan::VniExtOrNone: a VXLAN network identifier (24 bits; RFC 7348, section 5), or none.
//
// None is the number one above the largest VNI; a default-built value holds it. The
// text is the number in decimal, or `none`.
//
// Failures: a number above none throws Quelm::RangeError; as a text, Quelm::TextError.
#pragma once

#include <compare>
#include <functional>
#include <string>

#include <Quelm/Error.h>
#include <Quelm/Integers.h>
#include <Quelm/Text.h>

namespace Vxlan {

class VniExtOrNone : public Quelm::Value {
 public:
   static constexpr U32 kNone = 0x1000000;

   constexpr VniExtOrNone() = default;
   constexpr explicit VniExtOrNone( U32 value ) : value_( value ) {
      if ( value > kNone ) {
         throw Quelm::RangeError( "VNI " + std::to_string( value ) + " is above 16777215" );
      }
   }

   constexpr U32 value() const { return value_; }
   constexpr bool isNone() const { return value_ == kNone; }

   friend constexpr bool operator==( VniExtOrNone const &, VniExtOrNone const & ) = default;
   friend constexpr std::strong_ordering operator<=>( VniExtOrNone const &,
                                                      VniExtOrNone const & ) = default;

   static std::string_view textTypeName() { return "Vxlan::VniExtOrNone"; }
   void textTo( std::string & out ) const { out += isNone() ? "none" : std::to_string( value_ ); }
   static VniExtOrNone textFrom( Quelm::TextReader & in ) {
      if ( in.accept( "none" ) ) {
         return {};
      }
      Quelm::TextReader const before = in;
      bool const isNumber = in.peek() >= '0' && in.peek() <= '9';
      U32 const value = isNumber ? Quelm::TextForm< U32 >::read( in ) : kNone + 1;
      if ( value > kNone ) {
         before.fail( "a VNI from 0 to 16777215, or 'none'" );
      }
      return VniExtOrNone( value );
   }

 private:
   U32 value_ = kNone;
};

}  // namespace Vxlan

template<> struct std::hash< Vxlan::VniExtOrNone > {
   std::size_t operator()( Vxlan::VniExtOrNone const & vni ) const noexcept {
      return std::hash< U32 >()( vni.value() );
   }
};
