#include <Explanation/NoCopies.h>

#include <Explanation/Domains.h>

namespace Chip {

namespace {

bool leadsOver( Tunnel const & tunnel, Index interface ) {
   return std::find( tunnel.underlay.begin(), tunnel.underlay.end(), interface ) !=
          tunnel.underlay.end();
}

class NoCopies {
 public:
   explicit NoCopies( Rehearsal const & rehearsal )
         : story_( rehearsal.story ), tables_( *rehearsal.tables ), rehearsal_( rehearsal ) {}

   std::vector< NoCopy > run() {
      for ( InterfaceConfig const & intf : tables_.config.interfaces ) {
         addInterface( intf );
      }
      for ( std::size_t n = 0; n < tables_.interfaces.size(); ++n ) {
         if ( isPortChannel( tables_.interfaces[ n ].intfId ) ) {
            addUnlessCopied( static_cast< Index >( n ) );
         }
      }
      return std::move( result_ );
   }

 private:
   void addInterface( InterfaceConfig const & intf ) {
      UnitTables const & unit = tables_.units[ tables_.unitOf( intf.unit ) ];
      Index const index = unit.interfaces[ intf.logicalPort ];
      if ( tables_.interfaces[ index ].intfId == intf.intfId ) {
         addUnlessCopied( index );
      } else {
         addMember( intf, index );
      }
   }

   void addUnlessCopied( Index index ) {
      if ( !copyOf( index ) ) {
         result_.push_back( reasonOf( index ) );
      }
   }

   void addMember( InterfaceConfig const & intf, Index portChannel ) {
      bool const hasCopy =
         std::any_of( story_.copies.begin(), story_.copies.end(),
                      [ & ]( Copy const & copy ) { return nameOf( copy.port ) == intf.intfId; } );
      if ( hasCopy ) {
         return;
      }
      NoCopy entry = reasonOfMember( portChannel );
      entry.intfId = intf.intfId;
      entry.portChannel = tables_.interfaces[ portChannel ].intfId;
      result_.push_back( entry );
   }

   NoCopy reasonOfMember( Index portChannel ) const {
      Copy const * const copy = copyOf( portChannel );
      if ( !copy ) {
         return reasonOf( portChannel );
      }
      bool const isArrival = copy->verdict == Verdict::Arrival;
      return { .reason = isArrival ? NoCopyReason::ArrivalMember : NoCopyReason::OtherMember,
               .instead = { .intfId = nameOf( copy->port ) } };
   }

   NoCopy reasonOf( Index index ) const {
      ForwardingInterface const & interface = tables_.interfaces[ index ];
      NoCopy result{ .intfId = interface.intfId };
      if ( story_.dropReason ) {
         result.reason = NoCopyReason::FrameDropped;
         result.dropReason = story_.dropReason;
      } else if ( !isForSeveral( *story_.kind ) ) {
         isElsewhere( result, index );
      } else if ( interface.isUnderlay ) {
         isNoWay( result, index );
      } else {
         result.reason = NoCopyReason::NotInVlan;
         result.vlan = forwardingDomain()->vlan;
      }
      return result;
   }

   // Of a frame for one place: its one copy went another way.
   void isElsewhere( NoCopy & result, Index index ) const {
      Copy const & only = story_.copies.front();
      Tunnel const * const tunnel = only.remoteVtep ? &tunnelTo( *only.remoteVtep ) : nullptr;
      bool const leadsThereToo = tunnel && leadsOver( *tunnel, index );
      result.reason = leadsThereToo ? NoCopyReason::OtherUnderlay : NoCopyReason::OnePlace;
      result.instead = { only.intfId, only.remoteVtep };
   }

   // Of an underlay interface and a frame for several.
   void isNoWay( NoCopy & result, Index index ) const {
      BridgeDomain const & domain = *forwardingDomain();
      result.reason = NoCopyReason::NotOnTheWay;
      if ( story_.tunnel ) {
         result.reason = NoCopyReason::FromTunnel;
      } else if ( domain.vni == 0 ) {
         result.reason = NoCopyReason::NoVni;
         result.vlan = domain.vlan;
      } else if ( domain.floodList.empty() ) {
         result.reason = NoCopyReason::EmptyFloodList;
         result.vlan = domain.vlan;
         result.vni = domain.vni;
      } else if ( tables_.interfaces[ index ].ports.empty() ) {
         result.reason = NoCopyReason::NoMember;
      } else if ( Copy const * const taken = copyThatMightTake( index ) ) {
         result.reason = NoCopyReason::OtherUnderlay;
         result.instead = { taken->intfId, taken->remoteVtep };
      }
   }

   // The first copy into a tunnel that leads over that interface too, or nullptr.
   Copy const * copyThatMightTake( Index index ) const {
      auto const found =
         std::find_if( story_.copies.begin(), story_.copies.end(), [ & ]( Copy const & copy ) {
            return copy.remoteVtep && leadsOver( tunnelTo( *copy.remoteVtep ), index );
         } );
      return found == story_.copies.end() ? nullptr : &*found;
   }

   Copy const * copyOf( Index index ) const {
      Pelk::IntfId const & intfId = tables_.interfaces[ index ].intfId;
      auto const found =
         std::find_if( story_.copies.begin(), story_.copies.end(),
                       [ & ]( Copy const & copy ) { return copy.intfId == intfId; } );
      return found == story_.copies.end() ? nullptr : &*found;
   }

   Tunnel const & tunnelTo( Pelk::IpGenAddr const & vtep ) const {
      return tables_.tunnels[ *valueIn( tables_.tunnelOfVtep, vtep ) ];
   }
   BridgeDomain const * forwardingDomain() const { return forwardingDomainOf( rehearsal_ ); }

   // The interface at that port, of which a port channel may be made.
   Pelk::IntfId nameOf( VornalTypes::VornalPort port ) const {
      auto const & all = tables_.config.interfaces;
      auto const found =
         std::find_if( all.begin(), all.end(), [ & ]( InterfaceConfig const & one ) {
            return one.unit == port.unit() && one.logicalPort == port.logicalPort();
         } );
      return found == all.end() ? Pelk::IntfId() : found->intfId;
   }

   FrameStory const & story_;
   Tables const & tables_;
   Rehearsal const & rehearsal_;
   std::vector< NoCopy > result_;
};

}  // namespace

std::vector< NoCopy > noCopiesOf( Rehearsal const & rehearsal ) {
   return NoCopies( rehearsal ).run();
}

}  // namespace Chip
