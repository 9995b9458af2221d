#include <Story/VtepNames.h>

#include <charconv>

#include <Snapshot/RuleText.h>

namespace Story {

namespace {

// The collection of VornalCentral::VpIndexStatus; no other entity has one of this name.
constexpr std::string_view kVirtualPorts = "remoteVport";

// A VTEP behind another tunnel interface, or in a tunnel group, has more in its key than its
// address; such a VTEP has no source gport.
bool isAddress( std::string const & key ) {
   return key.find_first_of( "@#" ) == std::string::npos;
}

}  // namespace

void VtepNames::add( U32 virtualPort, std::string const & vtep ) {
   vteps_.insert_or_assign( Chip::vxlanGportOf( static_cast< U16 >( virtualPort ) ), vtep );
}

void VtepNames::onEvent( PublishedChange const & change ) {
   if ( change.attribute != kVirtualPorts || !change.to || !isAddress( change.key ) ) {
      return;
   }
   U32 virtualPort = 0;
   std::from_chars( change.to->data(), change.to->data() + change.to->size(), virtualPort );
   add( virtualPort, change.key );
}

std::string VtepNames::operator()( Chip::Qualifier qualifier, U32 number ) const {
   auto const vtep =
      qualifier == Chip::Qualifier::SrcVxlanGport ? vteps_.find( number ) : vteps_.end();
   return vtep == vteps_.end() ? Chip::nameInChip( qualifier, number ) : "VTEP " + vtep->second;
}

}  // namespace Story
