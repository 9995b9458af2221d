// VornalCommon::ClassId: a class id that the ingress field processor puts on a packet and the
// egress field processor matches.
//
// 0xFFFF stands for no class id; a default-built one holds it and is not valid. The text is the
// number in decimal.
#pragma once

#include <compare>
#include <functional>
#include <string>

#include <Quelm/Integers.h>
#include <Quelm/Text.h>

namespace VornalCommon {

class ClassId : public Quelm::Value {
 public:
   static constexpr U16 kNone = 0xffff;

   constexpr ClassId() = default;
   constexpr explicit ClassId( U16 value ) : value_( value ) {}

   constexpr U16 value() const { return value_; }
   constexpr bool isValid() const { return value_ != kNone; }

   friend constexpr bool operator==( ClassId const &, ClassId const & ) = default;
   friend constexpr std::strong_ordering operator<=>( ClassId const &, ClassId const & ) = default;

   static std::string_view textTypeName() { return "VornalCommon::ClassId"; }
   void textTo( std::string & out ) const { Quelm::TextForm< U16 >::write( out, value_ ); }
   static ClassId textFrom( Quelm::TextReader & in ) {
      return ClassId( Quelm::TextForm< U16 >::read( in ) );
   }

 private:
   U16 value_ = kNone;
};

}  // namespace VornalCommon

template<> struct std::hash< VornalCommon::ClassId > {
   std::size_t operator()( VornalCommon::ClassId const & classId ) const noexcept {
      return std::hash< U16 >()( classId.value() );
   }
};
