#include <FromScenario/FromScenario.h>

#include <algorithm>
#include <fstream>

#include <nlohmann/json.hpp>

#include <FromScenario/Changes.h>
#include <FromScenario/Faults.h>
#include <Steps/Call.h>
#include <Steps/Delete.h>
#include <Steps/DesignatedForwarder.h>
#include <Steps/ForeignEntries.h>
#include <Steps/Publish.h>
#include <Steps/Ready.h>
#include <Steps/Replace.h>
#include <Steps/Set.h>
#include <Steps/Turn.h>
#include <Steps/Verify.h>
#include <Steps/Withdraw.h>

namespace Reference {

namespace {

// --- The switch

bool hasVniRules( std::filesystem::path const & featureFiles ) {
   std::ifstream file( featureFiles / "VornalL3.json" );
   auto const toggles = nlohmann::json::parse( file, nullptr, false );
   return !toggles.is_object() || toggles.value( "SbdEvpnTcamOverrideRule", true );
}

void tellDevice( Scenario::Model const & scenario, Told & told ) {
   Scenario::Switch const & given = scenario.device;
   bool const usesClassIds = given.variant == Scenario::Variant::classId;
   told.device.variant = usesClassIds ? Variant::classId : Variant::egressMask;
   for ( Scenario::SwitchUnit const & unit : given.units ) {
      told.device.moduleOfUnit[ unit.number ] = unit.module;
   }
   told.device.ingressEntries = given.tcam.ingress.value_or( 0 );
   told.device.egressEntries = given.tcam.egress.value_or( 0 );
   told.device.isMulticastExempt = given.isL3MulticastExempt;
   told.device.hasVniRules = hasVniRules( scenario.featureFiles );
   if ( !given.tcam.ingress || ( usesClassIds && !given.tcam.egress ) ) {
      told.noOpinion = "the switch lacks a field-processor group that its variant uses";
   }
}

void tellForwarding( Scenario::Forwarding const & given, Told & told ) {
   Forwarding forwarding;
   for ( auto const & [ intf, vlans ] : given.vlans ) {
      auto & carried = forwarding.vlans[ interfaceOf( intf ) ];
      carried.insert( vlans.tagged.begin(), vlans.tagged.end() );
      if ( vlans.untagged ) {
         carried.insert( *vlans.untagged );
      }
   }
   for ( auto const & [ intf, designated ] : given.config.designatedForwarder ) {
      if ( !designated.allVlans ) {
         forwarding.notDesignated.insert( interfaceOf( intf ) );
      }
   }
   forwarding.vnis.insert( given.config.vlanToVni.begin(), given.config.vlanToVni.end() );
   forwarding.hasIpv4 = given.config.vtepIpv4.has_value();
   forwarding.hasIpv6 = given.config.vtepIpv6.has_value();
   told.forwarding = forwarding;
}

// The allocator of class ids takes back what an earlier run was granted and did not ask for.
void tellPublished( Scenario::Model const & scenario, Told & told ) {
   for ( Scenario::Change const & change : scenario.published ) {
      if ( auto const * const request = std::get_if< Scenario::ClassIdRequest >( &change.what ) ) {
         told.requestsBefore.insert( vtepOf( request->vtep ) );
      }
   }
   for ( Scenario::Change const & change : scenario.published ) {
      for ( Event const & event : published( change.what ) ) {
         auto const * const grant = std::get_if< GrantIs >( &event );
         if ( !grant || told.requestsBefore.contains( grant->vtep ) ) {
            told.before.push_back( event );
         }
      }
   }
}

// --- Steps

using Turns = std::vector< std::vector< Event > >;

// Each change is a turn.
template< typename Kind > Turns turnsOf( Scenario::Action const & action ) {
   auto const * const step = dynamic_cast< Kind const * >( &action );
   Turns turns;
   if constexpr ( std::is_same_v< Kind, Steps::Replace > ) {
      for ( auto const & one : step ? step->replacements : decltype( step->replacements )() ) {
         turns.push_back( { replaced( one.what ) } );
      }
   } else {
      for ( auto const & one : step ? step->changes : decltype( step->changes )() ) {
         turns.push_back( std::is_same_v< Kind, Steps::Publish > ? published( one.what )
                                                                 : withdrawn( one.what ) );
      }
   }
   return turns;
}

bool isPass( Scenario::Action const & action ) {
   auto const * const call = dynamic_cast< Steps::Call const * >( &action );
   auto const * const verify = dynamic_cast< Steps::Verify const * >( &action );
   return ( call && call->operation == "handleVerify" ) ||
          ( verify && verify->how != Steps::Verify::How::audit );
}

// A key of a VTEP that is set or deleted by its path, or a port that an operation gives.
std::optional< Event > byPath( Scenario::Action const & action ) {
   auto const * const set = dynamic_cast< Steps::Set const * >( &action );
   auto const * const gone = dynamic_cast< Steps::Delete const * >( &action );
   if ( set ) {
      return keyIs( set->at, set->value );
   }
   if ( gone ) {
      return keyGoes( gone->at );
   }
   auto const * const call = dynamic_cast< Steps::Call const * >( &action );
   return call ? portIs( call->operation, call->arguments ) : std::nullopt;
}

Turns changesOf( Scenario::Action const & action ) {
   Turns all = turnsOf< Steps::Publish >( action );
   for ( Turns const & turns :
         { turnsOf< Steps::Withdraw >( action ), turnsOf< Steps::Replace >( action ) } ) {
      all.insert( all.end(), turns.begin(), turns.end() );
   }
   if ( auto const change = byPath( action ) ) {
      all.push_back( { *change } );
   }
   if ( auto const fault = faultOf( action ) ) {
      all.push_back( { *fault } );
   }
   if ( isPass( action ) ) {
      all.push_back( { Pass{} } );
   }
   auto const * const ready = dynamic_cast< Steps::Ready const * >( &action );
   if ( ready && ready->point == "l2Ready" ) {
      all.push_back( { Ready{} } );
   }
   return all;
}

std::string noOpinionOn( Scenario::Action const & action ) {
   bool const isAnyChange = dynamic_cast< Steps::Set const * >( &action ) ||
                            dynamic_cast< Steps::Delete const * >( &action ) ||
                            dynamic_cast< Steps::Call const * >( &action );
   if ( isAnyChange && !byPath( action ) && !isPass( action ) ) {
      return "an entity was changed through the generic interface";
   }
   return noOpinionOnFault( action );
}

void tellTurn( Steps::Turn const & turn, StepTold & told ) {
   std::vector< Event > & events = told.turns.emplace_back();
   for ( auto const & placed : turn.parts ) {
      for ( auto const & of : changesOf( *placed.part ) ) {
         events.insert( events.end(), of.begin(), of.end() );
      }
      if ( told.noOpinion.empty() ) {
         told.noOpinion = noOpinionOn( *placed.part );
      }
   }
}

StepTold tellStep( Scenario::Action const & action ) {
   StepTold told;
   told.noOpinion = noOpinionOn( action );
   told.turns = changesOf( action );
   if ( auto const * const turn = dynamic_cast< Steps::Turn const * >( &action ) ) {
      tellTurn( *turn, told );
   } else if ( auto const * const others =
                  dynamic_cast< Steps::ForeignEntries const * >( &action ) ) {
      Group const group =
         others->group == Scenario::TcamGroup::ingress ? Group::ingress : Group::egress;
      told.turns.push_back( { OthersHold{ group, others->unit, others->count } } );
   } else if ( auto const * const designated =
                  dynamic_cast< Steps::DesignatedForwarder const * >( &action ) ) {
      for ( auto const & [ intf, isDesignated ] : designated->isDesignated ) {
         told.isDesignated[ interfaceOf( intf ) ] = isDesignated;
      }
   }
   return told;
}

}  // namespace

Told told( Scenario::Model const & scenario ) {
   Told told;
   tellDevice( scenario, told );
   if ( scenario.forwarding ) {
      tellForwarding( *scenario.forwarding, told );
   }
   tellPublished( scenario, told );
   for ( Scenario::Step const & step : scenario.steps ) {
      told.steps.push_back( tellStep( *step.action ) );
   }
   return told;
}

}  // namespace Reference
