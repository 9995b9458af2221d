// The shim of the software chip: the SDK's field calls, carried out on the units' entries.
//
// A field call finds the entry by unit and id, in whichever group it is, and works on its staged
// copy; a read-back reads the written copy. Result codes are Chip::ResultCode's, success is 0. A
// call is refused, and changes nothing, when
// - the unit or the entry is unknown: UnknownUnit, UnknownEntry;
// - the entry's group does not have the qualifier or action: Unsupported;
// - the action is staged already: Exists. A second qualifier of a field replaces the first;
// - a value cannot be meant: BadValue. Such are a gport that is not a VXLAN virtual port's, an IP
//   type or an action that the SDK does not define, an egress class selection other than "new", a
//   class id of more than 16 bits;
// - the hardware does not have the qualifier or action to be read back: NotFound.
//
// Values of this release: the packet resolution of known L3 multicast is 12; gports are made as in
// Gport.h; the exact-match mask of a gport and of an IP type is all ones, and IP type "any" matches
// with an empty mask.
//
// A chip shows nothing before a call or after a failed one, so beforeFieldCall() and
// fieldCallFailed() do nothing here; decorators (Decorators/) are the place to see them.
//
// Threads: one at a time, with the activity lock given up. No counted references are touched.
#pragma once

#include <FieldProcessor/Unit.h>
#include <Shim/OneCallSdk.h>

namespace Chip {

class SoftSdk final : public Shim::OneCallSdk {
 public:
   static constexpr U32 kPacketResL3McKnown = 12;

   // The units outlive the shim.
   explicit SoftSdk( Units & units ) : units_( units ) {}

   S32 make( Shim::Call & call ) override;

   void beforeFieldCall() override {}
   void fieldCallFailed() override {}

   S32 successCode() const override { return codeOf( ResultCode::None ); }
   std::string errorText( S32 rc ) const override { return std::string( resultText( rc ) ); }
   U32 packetResL3McKnown() const override { return kPacketResL3McKnown; }
   U32 vxlanGport( U16 vpIndex ) const override;

   void pbmpClear( _shr_pbmp & pbmp ) const override;
   bool pbmpEqual( _shr_pbmp const & a, _shr_pbmp const & b ) const override;
   U32 pbmpCount( _shr_pbmp const & pbmp ) const override;

 private:
   Units & units_;
};

}  // namespace Chip
