// The results of port resolution, from which rules are programmed.
//
// Both are values: copied, compared, printed and parsed. Neither can be hashed, so neither can be
// the key of a collection.
#pragma once

#include <Brum/PerUnitBitmap.h>
#include <Quelm/Fields.h>
#include <VornalTypes/VornalPortList.h>

namespace Vornal {

// The ports of one unit that lie on the segments shared with one remote VTEP, twice: one bit per
// logical port, and as chip ports.
class SharedESPortInfo : public Quelm::Value {
   QUELM_VALUE( SharedESPortInfo, "Vornal::SharedESPortInfo" )
   QUELM_FIELD( sharedPortBitmap, Brum::PerUnitBitmap )
   QUELM_FIELD( sharedPortList, VornalTypes::VornalPortList )

   SharedESPortInfo() = default;
   // Reads the text form; throws Quelm::TextError for any other text.
   SharedESPortInfo( char const * begin, char const * end );

   // The bitmaps first, and the lists only when those are equal.
   friend bool operator==( SharedESPortInfo const & a, SharedESPortInfo const & b ) {
      return &a == &b || ( a.sharedPortBitmap() == b.sharedPortBitmap() &&
                           a.sharedPortList() == b.sharedPortList() );
   }
};

// The effect that the change of one interface has on the ports shared with one remote VTEP on one
// unit.
class PortListsOnUpdate : public Quelm::Value {
   QUELM_VALUE( PortListsOnUpdate, "Vornal::PortListsOnUpdate" )
   QUELM_FIELD( portList, VornalTypes::VornalPortList )      // after the change
   QUELM_FIELD( prevPortList, VornalTypes::VornalPortList )  // before it

   PortListsOnUpdate() = default;
   // Reads the text form; throws Quelm::TextError for any other text.
   PortListsOnUpdate( char const * begin, char const * end );

   friend bool operator==( PortListsOnUpdate const & a, PortListsOnUpdate const & b ) {
      return a.portList() == b.portList() && a.prevPortList() == b.prevPortList();
   }
};

}  // namespace Vornal
