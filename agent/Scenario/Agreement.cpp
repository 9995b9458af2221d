#include <Scenario/Agreement.h>

#include <algorithm>

#include <Scenario/Reading.h>

namespace Scenario {

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;

std::string inLine( int line ) {
   return " (line " + std::to_string( line ) + ")";
}

std::string familyOf( IpGenAddr const & address ) {
   return address.family() == IpGenAddr::Family::ipv4 ? "IPv4" : "IPv6";
}

auto isAbout( IntfId const & intf ) {
   return [ intf ]( auto const & said ) { return said.what == intf; };
}

}  // namespace

void Agreement::check( Reading & reading ) const {
   checkVteps( reading );
   checkUnderlay( reading );
   checkAccess( reading );
   checkDesignated( reading );
}

// A switch without an address forwards nothing and is no such VTEP.
void Agreement::checkOthers( Reading & reading, Vteps const & vteps ) const {
   for ( auto const & [ vtep, line ] : vteps ) {
      if ( auto const self = ownVteps_.find( vtep ); self != ownVteps_.end() ) {
         reading.problem( line, vtep.stringValue() + " is this switch itself" +
                                   inLine( self->second ) + "; give the address of another VTEP" );
      }
   }
}

void Agreement::checkVteps( Reading & reading ) const {
   checkOthers( reading, remote_ );
   checkOthers( reading, sharing_ );
   for ( auto const & [ vtep, line ] : remote_ ) {
      auto const family = vtep.family();
      bool const isReachable =
         std::any_of( ownVteps_.begin(), ownVteps_.end(),
                      [ & ]( auto const & one ) { return one.first.family() == family; } );
      if ( !ownVteps_.empty() && !isReachable && reading.judges( Ground::vtepAddresses ) ) {
         reading.problem( line, "the switch has no " + familyOf( vtep ) +
                                   " VTEP address to reach " + vtep.stringValue() +
                                   "; add one to 'vtep-addresses'" );
      }
   }
}

void Agreement::checkUnderlay( Reading & reading ) const {
   for ( auto const & [ intf, line, portChannel ] : members_ ) {
      if ( auto const found = underlay_.find( intf ); found != underlay_.end() ) {
         reading.problem( line, intf.stringValue() + " is an underlay interface" +
                                   inLine( found->second ) +
                                   "; take it out of 'underlay', and name its port channel there" );
      }
   }
   for ( auto const & [ intf, line ] : access_ ) {
      if ( auto const found = underlay_.find( intf ); found != underlay_.end() ) {
         reading.problem( line, intf.stringValue() + " is an underlay interface" +
                                   inLine( found->second ) +
                                   ", which has no VLANs; take it out of one of the two" );
      }
   }
}

// A member that leaves its port channel in a step has VLANs of its own from then on, unless it
// carried VXLAN before.
void Agreement::checkAccess( Reading & reading ) const {
   for ( auto const & [ intf, line ] : access_ ) {
      auto const member = std::find_if( members_.begin(), members_.end(), isAbout( intf ) );
      if ( member != members_.end() && !leaving_.contains( intf ) ) {
         if ( reading.judges( Ground::leavingMembers ) ) {
            reading.problem( line, intf.stringValue() + " is in a port channel" +
                                      inLine( member->line ) +
                                      ", whose VLANs hold; give these to the port channel" );
         }
      } else if ( member != members_.end() && underlay_.contains( member->portChannel ) ) {
         reading.problem( line, intf.stringValue() + " is in " + member->portChannel.stringValue() +
                                   inLine( member->line ) + ", which is an underlay interface" +
                                   inLine( underlay_.at( member->portChannel ) ) +
                                   " and has no VLANs; take it out of one of the two" );
      }
   }
}

void Agreement::checkDesignated( Reading & reading ) const {
   for ( auto const & [ intf, line ] : designated_ ) {
      auto const member = std::find_if( members_.begin(), members_.end(), isAbout( intf ) );
      if ( member != members_.end() && !leaving_.contains( intf ) &&
           reading.judges( Ground::leavingMembers ) ) {
         reading.problem( line, intf.stringValue() + " is in a port channel" +
                                   inLine( member->line ) +
                                   ", which is designated as a whole; name " +
                                   member->portChannel.stringValue() );
      }
      bool const hasVlans = std::any_of( access_.begin(), access_.end(), isAbout( intf ) );
      bool const isUnderlay = underlay_.contains( intf );
      bool const isBare = isPortChannel( intf ) && !hasVlans;
      if ( !ownVteps_.empty() &&
           ( isUnderlay || ( isBare && reading.judges( Ground::accessVlans ) ) ) ) {
         reading.problem( line, intf.stringValue() + " carries no VLANs" +
                                   ( isUnderlay ? " as an underlay interface" : "" ) +
                                   ", so it designates nothing; give it some under 'access' or "
                                   "'trunk'" );
      }
   }
}

}  // namespace Scenario
