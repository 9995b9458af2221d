#include <Pipeline/Departure.h>

namespace Chip {

void Departure::start( Bytes frame, EthernetHeader const & ethernet ) {
   QUELM_ASSERT( frame.size() <= kLargestFrame );
   frame_ = frame;
   ethernet_ = ethernet;
   untaggedSize_ = 0;
   taggedSize_ = 0;
}

MutableBytes Departure::ownCopy() {
   std::copy( frame_.begin(), frame_.end(), own_.begin() );
   MutableBytes const own = MutableBytes( own_ ).first( frame_.size() );
   frame_ = own;
   return own;
}

Bytes Departure::untagged() {
   return ethernet_.tag ? untaggedCopy() : frame_;
}

// With the priority that the frame had; 0 when it had no tag.
Bytes Departure::tagged( U16 vlan ) {
   constexpr U16 vlanBits = 0xfff;
   U16 const tag = static_cast< U16 >( ( ethernet_.tag.value_or( 0 ) & ~vlanBits ) | vlan );
   if ( ethernet_.tag == tag ) {
      return frame_;
   }
   MutableBytes const all( tagged_ );
   if ( taggedSize_ == 0 || taggedWith_ != tag ) {
      Bytes const behind = frame_.subspan( ethernet_.size() - sizeof( U16 ) );
      auto const addressesEnd =
         std::copy_n( frame_.begin(), EthernetHeader::kAddresses, all.begin() );
      std::copy( behind.begin(), behind.end(), addressesEnd + EthernetHeader::kTag );
      putU16( all, EthernetHeader::kAddresses, EtherType::kVlanTag );
      putU16( all, EthernetHeader::kAddresses + sizeof( U16 ), tag );
      taggedSize_ = EthernetHeader::kAddresses + EthernetHeader::kTag + behind.size();
      taggedWith_ = tag;
   }
   return all.first( taggedSize_ );
}

Bytes Departure::enveloped( OuterHeaders const & outer, OuterHeaders::PerFrame perFrame ) {
   perFrame.innerSize = untaggedCopy().size();
   std::size_t const start = OuterHeaders::kLargest - outer.size();
   MutableBytes const all = MutableBytes( untagged_ ).subspan( start );
   outer.write( perFrame, all.first( outer.size() ) );
   return all.first( outer.size() + perFrame.innerSize );
}

MutableBytes Departure::untaggedCopy() {
   MutableBytes const room = MutableBytes( untagged_ ).subspan( OuterHeaders::kLargest );
   if ( untaggedSize_ == 0 ) {
      Bytes const behind = frame_.subspan( ethernet_.size() - sizeof( U16 ) );
      auto const addressesEnd =
         std::copy_n( frame_.begin(), EthernetHeader::kAddresses, room.begin() );
      std::copy( behind.begin(), behind.end(), addressesEnd );
      untaggedSize_ = EthernetHeader::kAddresses + behind.size();
   }
   return room.first( untaggedSize_ );
}

}  // namespace Chip
