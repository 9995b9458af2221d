#include <Explanation/Explanation.h>

#include <Explanation/Domains.h>
#include <Pipeline/RuleCheck.h>

namespace Chip {

namespace {

class Explainer {
 public:
   Explainer( Rehearsal const & rehearsal, ExplanationLimits const & limits )
         : rehearsal_( rehearsal ),
           story_( rehearsal.story ),
           tables_( *rehearsal.tables ),
           limits_( limits ) {}

   Explanation run( Bytes frame ) const {
      return { .number = rehearsal_.number,
               .story = story_,
               .headers = decode( frame, isFromUnderlay() ),
               .arrivalDomain = fieldsOf( arrivalDomainOf( rehearsal_ ) ),
               .source = source(),
               .domain = fieldsOf( forwardingDomainOf( rehearsal_ ) ),
               .hostRoute = hostRoute(),
               .multicastRoute = multicastRoute(),
               .destination = rehearsal_.destination,
               .ingress = ingress(),
               .copies = copies(),
               .noCopies = noCopiesOf( rehearsal_ ) };
   }

 private:
   bool isFromUnderlay() const {
      return std::any_of( tables_.interfaces.begin(), tables_.interfaces.end(),
                          [ & ]( ForwardingInterface const & one ) {
                             return one.intfId == story_.arrivalIntfId && one.isUnderlay;
                          } );
   }

   static std::optional< DomainFields > fieldsOf( BridgeDomain const * domain ) {
      return domain ? std::optional( DomainFields{ domain->vlan, domain->vni } ) : std::nullopt;
   }

   std::optional< SourceExplanation > source() const {
      if ( !rehearsal_.learning ) {
         return std::nullopt;
      }
      bool const isTunnel = story_.tunnel.has_value();
      return SourceExplanation{ .learning = *rehearsal_.learning,
                                .vlan = story_.inner->vlan,
                                .address = story_.inner->source,
                                .seen = isTunnel ? MacPlace{ .remoteVtep = story_.tunnel->source }
                                                 : MacPlace{ .intfId = story_.arrivalIntfId },
                                .known = rehearsal_.source };
   }

   std::optional< HostRouteExplanation > hostRoute() const {
      if ( story_.kind != FrameKind::RoutedUnicast || !rehearsal_.destination ) {
         return std::nullopt;
      }
      Pelk::IpGenAddr const host = story_.inner->ip->destination;
      return HostRouteExplanation{ host, tables_.config.hostRoutes.at( host ) };
   }

   std::optional< MulticastRouteExplanation > multicastRoute() const {
      if ( story_.kind != FrameKind::RoutedMulticast ) {
         return std::nullopt;
      }
      Pelk::IpGenAddr const group = story_.inner->ip->destination;
      std::set< Vlan > const & vlans = tables_.config.multicastRoutes.at( group );
      return MulticastRouteExplanation{ group, { vlans.begin(), vlans.end() } };
   }

   std::vector< IngressExplanation > ingress() const {
      std::vector< IngressExplanation > result;
      for ( IngressStory const & met : story_.ingress ) {
         UnitTables const & unit = unitOf( met.unit );
         result.push_back( { met, rehearsal_.ingress,
                             compare( unit.ingress, unit.number, keyFieldsOf( rehearsal_.ingress ),
                                      limits_.nearMisses ) } );
      }
      return result;
   }

   std::vector< CopyExplanation > copies() const {
      std::vector< CopyExplanation > result;
      for ( Copy const & copy : story_.copies ) {
         result.push_back( explained( copy ) );
      }
      return result;
   }

   CopyExplanation explained( Copy const & copy ) const {
      CopyExplanation result{ .story = copy };
      switch ( copy.verdict ) {
      case Verdict::Arrival:
      case Verdict::NoPort:
      case Verdict::NoVtep: return result;
      case Verdict::Masked: break;
      case Verdict::Dropped: result.egress = egress( copy.port ); break;
      case Verdict::Sent:
      case Verdict::NotDesignated:
         result.egress = egress( copy.port );
         if ( story_.tunnel && isForSeveral( *story_.kind ) ) {
            result.isDesignated = copy.verdict == Verdict::Sent;
         }
      }
      result.mask = mask( copy.port );
      return result;
   }

   std::optional< MaskExplanation > mask( VornalTypes::VornalPort port ) const {
      std::optional< RuleKey > const & rule = metBy( port.unit() ).rule;
      if ( !rule ) {
         return std::nullopt;
      }
      Entry const & winner = *unitOf( port.unit() ).ingress->entry( rule->id );
      auto const & mask = ( *winner.written() )[ Action::EgressMask ];
      return mask ? std::optional( MaskExplanation{ *rule, mask->ports.bit( port.logicalPort() ) } )
                  : std::nullopt;
   }

   EgressExplanation egress( VornalTypes::VornalPort port ) const {
      UnitTables const & unit = unitOf( port.unit() );
      EgressFields const fields = egressFieldsOf( unit, port, ipTypeOf( story_.inner->etherType ),
                                                  metBy( port.unit() ).classId );
      return { fields,
               compare( unit.egress, unit.number, keyFieldsOf( fields ), limits_.nearMisses ) };
   }

   UnitTables const & unitOf( U16 number ) const {
      return tables_.units[ tables_.unitOf( number ) ];
   }
   // The ingress lookup of that unit, which a copy for one of its ports has met.
   IngressStory const & metBy( U16 unit ) const {
      return *std::find_if( story_.ingress.begin(), story_.ingress.end(),
                            [ & ]( IngressStory const & met ) { return met.unit == unit; } );
   }

   Rehearsal const & rehearsal_;
   FrameStory const & story_;
   Tables const & tables_;
   ExplanationLimits const & limits_;
};

}  // namespace

Explanation explain( Pipeline const & pipeline, VornalTypes::VornalPort arrival, Bytes frame,
                     ExplanationLimits const & limits ) {
   Rehearsal const rehearsal = pipeline.rehearse( arrival, frame );
   return Explainer( rehearsal, limits ).run( frame );
}

}  // namespace Chip
