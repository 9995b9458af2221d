// L3::VrfName: the name of a VRF. A default-built one is empty. Names compare by their characters;
// the text form is that of a string.
#pragma once

#include <compare>
#include <functional>
#include <string>
#include <utility>

#include <Quelm/Text.h>

namespace L3 {

class VrfName : public Quelm::Value {
 public:
   VrfName() = default;
   explicit VrfName( std::string name ) : name_( std::move( name ) ) {}

   std::string const & stringValue() const { return name_; }

   friend bool operator==( VrfName const &, VrfName const & ) = default;
   friend std::strong_ordering operator<=>( VrfName const &, VrfName const & ) = default;

   static std::string_view textTypeName() { return "L3::VrfName"; }
   void textTo( std::string & out ) const { Quelm::TextForm< std::string >::write( out, name_ ); }
   static VrfName textFrom( Quelm::TextReader & in ) {
      return VrfName( Quelm::TextForm< std::string >::read( in ) );
   }

 private:
   std::string name_;
};

}  // namespace L3

template<> struct std::hash< L3::VrfName > {
   std::size_t operator()( L3::VrfName const & vrf ) const noexcept {
      return std::hash< std::string >()( vrf.stringValue() );
   }
};
