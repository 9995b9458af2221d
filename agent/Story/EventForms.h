// The forms of values that stand in events, for Story/Binary.h: enumerations, and numbers for the
// values of the platform that every call or frame has.
#pragma once

#include <Frames/MacAddress.h>
#include <Story/Binary.h>
#include <Story/ChipFields.h>
#include <Story/Event.h>

namespace Story::Binary {

// --- Enumerations

template<> struct Enumeration< Chip::FrameKind > {
   static std::size_t values() { return Chip::kFrameKinds.size(); }
};
template<> struct Enumeration< Chip::DropReason > {
   static std::size_t values() { return Chip::kDropReasons; }
};
template<> struct Enumeration< Chip::Verdict > {
   static std::size_t values() { return Chip::kVerdicts; }
};
template<> struct Enumeration< DifferenceKind > {
   static std::size_t values() { return differenceRows().size(); }
};
template<> struct Enumeration< StepKind > {
   static std::size_t values() { return static_cast< std::size_t >( StepKind::Teardown ) + 1; }
};
template<> struct Enumeration< PluginPass::State > {
   static std::size_t values() {
      return static_cast< std::size_t >( PluginPass::State::Skipped ) + 1;
   }
};
template<> struct Enumeration< Kiv::Attribute::Kind > {
   static std::size_t values() {
      return static_cast< std::size_t >( Kiv::Attribute::Kind::Operation ) + 1;
   }
};

// --- Values of the platform

template<> struct Form< Chip::MacAddress > {
   static void write( Out & out, Chip::MacAddress const & address ) {
      out.number( address.value() );
   }
   static void read( In & in, Chip::MacAddress & address ) {
      address = Chip::MacAddress( in.below( Chip::MacAddress::broadcast().value() + 1 ) );
   }
   static void describe( Layout & layout ) { layout += "mac"; }
};

// The family, and its bytes in network order.
template<> struct Form< Pelk::IpGenAddr > {
   static void write( Out & out, Pelk::IpGenAddr const & address );
   static void read( In & in, Pelk::IpGenAddr & address );
   static void describe( Layout & layout ) { layout += "ip"; }
};

template<> struct Form< VornalTypes::VornalPort > {
   static void write( Out & out, VornalTypes::VornalPort const & port ) {
      out.number( port.unit() );
      out.number( port.logicalPort() );
      out.number( port.modId() );
   }
   static void read( In & in, VornalTypes::VornalPort & port ) {
      U16 const unit = Binary::read< U16 >( in );
      U16 const logicalPort = Binary::read< U16 >( in );
      port = { unit, logicalPort, Binary::read< U16 >( in ) };
   }
   static void describe( Layout & layout ) { layout += "port"; }
};

// One bit for each word with a port, and these words.
template<> struct Form< Brum::PerUnitBitmap > {
   static void write( Out & out, Brum::PerUnitBitmap const & ports );
   static void read( In & in, Brum::PerUnitBitmap & ports );
   static void describe( Layout & layout ) { layout += "ports"; }
};

// A table's cell is its value.
template<> struct Form< Cell > {
   static void write( Out & out, Cell const & cell ) { Binary::write( out, cell.value ); }
   static void read( In & in, Cell & cell ) { Binary::read( in, cell.value ); }
   static void describe( Layout & layout ) { Binary::describe< Cell::Value >( layout ); }
};

}  // namespace Story::Binary
