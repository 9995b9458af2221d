// VornalTypes::VornalPort: a port of a forwarding chip, as one 64-bit number.
//
//    bits  0 to 15   module id: the address of the port's chip on the fabric
//    bits 16 to 31   unit: the chip's number in this switch
//    bits 32 to 47   logical port: the port's number on its chip
//    bits 48 to 63   zero
//
// Logical port 1023 marks a port that is not valid; a default-built port is such a one, on unit 0.
//
// Ports are ordered by unit, then logical port, then module id. The text names all three:
// `unit0/port5/mod0`.
#pragma once

#include <compare>
#include <functional>
#include <string>

#include <Quelm/Integers.h>
#include <Quelm/Text.h>

namespace VornalTypes {

class VornalPort : public Quelm::Value {
 public:
   static constexpr U16 kInvalidLogicalPort = 1023;

   constexpr VornalPort() : VornalPort( 0, kInvalidLogicalPort ) {}
   constexpr VornalPort( U16 unit, U16 logicalPort, U16 modId = 0 )
         : value_( U64{ logicalPort } << 32 | U64{ unit } << 16 | modId ) {}

   constexpr U16 unit() const { return static_cast< U16 >( value_ >> 16 ); }
   constexpr U16 modId() const { return static_cast< U16 >( value_ ); }
   constexpr U16 logicalPort() const { return static_cast< U16 >( value_ >> 32 ); }
   constexpr bool isValid() const { return logicalPort() != kInvalidLogicalPort; }

   // The port as the number described above.
   constexpr U64 value() const { return value_; }

   friend constexpr bool operator==( VornalPort const &, VornalPort const & ) = default;
   friend constexpr std::strong_ordering operator<=>( VornalPort const & a, VornalPort const & b ) {
      return a.rank() <=> b.rank();
   }

   static std::string_view textTypeName() { return "VornalTypes::VornalPort"; }
   void textTo( std::string & out ) const {
      out += "unit" + std::to_string( unit() ) + "/port" + std::to_string( logicalPort() ) +
             "/mod" + std::to_string( modId() );
   }
   static VornalPort textFrom( Quelm::TextReader & in ) {
      in.expect( "unit" );
      U16 const unit = Quelm::TextForm< U16 >::read( in );
      in.expect( "/port" );
      U16 const logicalPort = Quelm::TextForm< U16 >::read( in );
      in.expect( "/mod" );
      U16 const modId = Quelm::TextForm< U16 >::read( in );
      return { unit, logicalPort, modId };
   }

 private:
   constexpr U64 rank() const { return U64{ unit() } << 32 | U64{ logicalPort() } << 16 | modId(); }

   U64 value_;
};

}  // namespace VornalTypes

template<> struct std::hash< VornalTypes::VornalPort > {
   std::size_t operator()( VornalTypes::VornalPort const & port ) const noexcept {
      return std::hash< U64 >()( port.value() );
   }
};
