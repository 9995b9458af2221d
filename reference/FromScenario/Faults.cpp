#include <FromScenario/Faults.h>

#include <Steps/DriftStep.h>
#include <Steps/EndAtCall.h>
#include <Steps/FailCall.h>
#include <Steps/RefuseEntry.h>

namespace Reference {

namespace {

std::string nameOf( Steps::RulePart const & part ) {
   return std::visit( []( auto one ) { return std::string( Chip::nameOf( one ) ); }, part );
}

RuleNamed ruleNamed( Steps::RuleNamed const & given ) {
   auto const * const entry = std::get_if< U32 >( &given );
   return entry ? RuleNamed{ *entry, "" } : RuleNamed{ 0, std::get< std::string >( given ) };
}

using Change = decltype( RuleDrifts::change );

struct Changes {
   Change operator()( Steps::PartFlips const & change ) const {
      return PartFlips{ nameOf( change.part ) };
   }
   Change operator()( Steps::QualifierMaskChanges const & change ) const {
      return MaskIs{ std::string( Chip::nameOf( change.qualifier ) ), change.mask };
   }
   Change operator()( Steps::EgressMaskChanges const & change ) const {
      PortsAre ports;
      for ( unsigned port = 0; port < Brum::PerUnitBitmap::kBits; ++port ) {
         if ( change.ports.bit( port ) ) {
            ports.ports.insert( port );
         }
      }
      return ports;
   }
   Change operator()( Steps::PriorityChanges const & change ) const {
      return PriorityIs{ change.priority };
   }
   Change operator()( Steps::PartGoes const & change ) const {
      return PartGoes{ nameOf( change.part ) };
   }
   Change operator()( Steps::EntryFate const & change ) const {
      switch ( change ) {
      case Steps::EntryFate::erased: return Fate::erased;
      case Steps::EntryFate::destroyed: return Fate::destroyed;
      case Steps::EntryFate::copied: break;
      }
      return Fate::copied;
   }
   Change operator()( Steps::GportsSwap const & change ) const {
      return GportsSwap{ ruleNamed( change.with ) };
   }
};

}  // namespace

std::optional< Event > faultOf( Scenario::Action const & action ) {
   if ( auto const * const fail = dynamic_cast< Steps::FailCall const * >( &action ) ) {
      return CallFails{ fail->operation, fail->number, fail->isLasting, fail->code };
   }
   if ( auto const * const refuse = dynamic_cast< Steps::RefuseEntry const * >( &action ) ) {
      return EntryIsRefused{ refuse->number };
   }
   if ( auto const * const drift = dynamic_cast< Steps::DriftStep const * >( &action ) ) {
      Group const group =
         drift->group == Scenario::TcamGroup::ingress ? Group::ingress : Group::egress;
      return RuleDrifts{ group, drift->unit, ruleNamed( drift->rule ),
                         std::visit( Changes(), drift->change ) };
   }
   return std::nullopt;
}

std::string noOpinionOnFault( Scenario::Action const & action ) {
   auto const * const fail = dynamic_cast< Steps::FailCall const * >( &action );
   if ( fail && fail->code > 0 ) {
      return "a call of the chip is to succeed without doing anything";
   }
   auto const * const drift = dynamic_cast< Steps::DriftStep const * >( &action );
   auto const * const mask =
      drift ? std::get_if< Steps::QualifierMaskChanges >( &drift->change ) : nullptr;
   if ( mask && mask->qualifier == Chip::Qualifier::IpType ) {
      return "a rule begins to look at the kind of IP packet";
   }
   return dynamic_cast< Steps::EndAtCall const * >( &action ) ? "the process is to end at a call"
                                                              : "";
}

}  // namespace Reference
