// Whatever single thing changes in the chip, the audit finds it: a thousand drifts, each on a
// switch that has just come up. A switch comes up once; each drift happens to a copy of its
// process.
#include <cstdlib>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <Drift/Drift.h>
#include <LiveSwitch.h>
#include <Steps/DriftStep.h>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using Steps::DriftStep;

constexpr int kDriftsOfEach = 3;

// The rules of a switch that has just come up.
Chip::Rules rulesOf( LiveSwitch const & device ) {
   std::map< Chip::RuleKey, Chip::Rule > byKey;
   for ( Story::Event const & event : device.events() ) {
      if ( auto const * const is = std::get_if< Story::RuleIs >( &event ) ) {
         byKey.insert_or_assign( is->rule.key, is->rule );
      }
   }
   Chip::Rules rules;
   for ( auto const & [ key, rule ] : byKey ) {
      rules.push_back( rule );
   }
   return rules;
}

// --- Any one change of a rule

// The qualifiers, or the actions, that the rule has.
template< typename Parts > auto partsOf( Chip::Rule const & rule, Parts const & parts ) {
   std::vector< typename Parts::value_type > there;
   std::copy_if( parts.begin(), parts.end(), std::back_inserter( there ),
                 [ & ]( auto part ) { return rule.content[ part ].has_value(); } );
   return there;
}

DriftStep::Change changeOf( Chip::Qualifier qualifier, Chip::Match const & match ) {
   switch ( *rc::gen::inRange( 0, 3 ) ) {
   case 0: return Steps::PartFlips{ qualifier };
   case 1: return Steps::PartGoes{ qualifier };
   default: break;
   }
   U32 const mask = *rc::gen::suchThat( rc::gen::arbitrary< U32 >(),
                                        [ & ]( U32 one ) { return one != match.mask; } );
   return Steps::QualifierMaskChanges{ qualifier, mask };
}

DriftStep::Change changeOf( Chip::Action action, Chip::ActionParameters const & parameters ) {
   Chip::ParametersUsed const used = rowOf( action ).parameters;
   if ( used == Chip::ParametersUsed::None || *rc::gen::arbitrary< bool >() ) {
      return Steps::PartGoes{ action };
   }
   if ( used == Chip::ParametersUsed::Number ) {
      return Steps::PartFlips{ action };
   }
   Steps::EgressMaskChanges mask{ parameters.ports };
   U32 const tipped = *rc::gen::inRange< U32 >( 0, Brum::PerUnitBitmap::kBits );
   mask.ports.bit( tipped ) ? mask.ports.bitClear( tipped ) : mask.ports.bitSet( tipped );
   return mask;
}

// Any qualifier of the rule changes, or any action.
template< typename Parts >
DriftStep::Change changeOfOne( Chip::Rule const & rule, Parts const & parts ) {
   auto const part = *rc::gen::elementOf( partsOf( rule, parts ) );
   return changeOf( part, *rule.content[ part ] );
}

DriftStep::Change changeOfPriority( Chip::Rule const & rule ) {
   auto const other = *rc::gen::suchThat( rc::gen::inRange< U32 >( 0, 5 ), [ & ]( U32 one ) {
      return one != rule.content.priority;
   } );
   return rule.content.priority && other == 4 ? Steps::PriorityChanges{}
                                              : Steps::PriorityChanges{ other };
}

// A rule that matches another gport.
std::optional< U32 > otherWithGport( Chip::Rule const & rule, Chip::Rules const & rules ) {
   constexpr auto kGport = Chip::Qualifier::SrcVxlanGport;
   for ( Chip::Rule const & other : rules ) {
      if ( other.key.unit == rule.key.unit && other.key.id != rule.key.id &&
           other.content[ kGport ] && rule.content[ kGport ] ) {
         return other.key.id;
      }
   }
   return std::nullopt;
}

DriftStep::Change anyChange( Chip::Rule const & rule, Chip::Rules const & rules ) {
   switch ( *rc::gen::inRange( 0, 5 ) ) {
   case 0:
      return *rc::gen::element( Steps::EntryFate::erased, Steps::EntryFate::destroyed,
                                Steps::EntryFate::copied );
   case 1: return changeOfPriority( rule );
   case 2:
      if ( !partsOf( rule, Chip::kActions ).empty() ) {
         return changeOfOne( rule, Chip::kActions );
      }
      break;
   case 3:
      if ( auto const other = otherWithGport( rule, rules ) ) {
         return Steps::GportsSwap{ *other };
      }
      break;
   default: break;
   }
   return changeOfOne( rule, Chip::kQualifiers );
}

DriftStep anyDrift( Chip::Rules const & rules ) {
   Chip::Rule const rule = *rc::gen::elementOf( rules );
   DriftStep drift;
   drift.group = rule.key.group == Vornal::kIfpLocalBiasGroup ? Scenario::TcamGroup::ingress
                                                              : Scenario::TcamGroup::egress;
   drift.unit = rule.key.unit;
   drift.rule = rule.key.id;
   drift.change = anyChange( rule, rules );
   return drift;
}

bool isAbout( Story::Difference const & difference, DriftStep const & drift ) {
   return difference.unit == drift.unit && !isKnown( difference.kind );
}

bool isFound( DriftStep const & drift, LiveSwitch & device ) {
   device.take( std::make_shared< DriftStep >( drift ) );
   auto const found = device.audited().differences;
   return std::any_of( found.begin(), found.end(),
                       [ & ]( auto const & one ) { return isAbout( one, drift ); } );
}

// Whether the audit finds it in a copy of this process; the switch here stays as it is.
bool isFoundInCopy( DriftStep const & drift, LiveSwitch & device ) {
   pid_t const pid = fork();
   if ( pid == 0 ) {
      _exit( isFound( drift, device ) ? EXIT_SUCCESS : EXIT_FAILURE );
   }
   int status = 0;
   return pid > 0 && waitpid( pid, &status, 0 ) == pid && WIFEXITED( status ) &&
          WEXITSTATUS( status ) == EXIT_SUCCESS;
}

// --- The switches

struct Kind {
   char const * name;
   Leaf leaf;
};

class DriftProperty : public testing::TestWithParam< Kind > {};

// rapidcheck tries a hundred times and prints its seed.
TEST_P( DriftProperty, TheAuditFindsEverySingleDrift ) {
   LiveSwitch device( GetParam().leaf );
   auto const rules = rulesOf( device );
   ASSERT_TRUE( device.audited().differences.empty() );
   EXPECT_TRUE( rc::check( [ & ] {
      for ( int n = 0; n < kDriftsOfEach; ++n ) {
         DriftStep const drift = anyDrift( rules );
         RC_LOG() << drift.description() << '\n';
         RC_ASSERT( isFoundInCopy( drift, device ) );
      }
   } ) );
}

INSTANTIATE_TEST_SUITE_P(
   Any, DriftProperty,
   testing::Values( Kind{ "EgressMask", Leaf() }, Kind{ "ClassId", classIdLeaf() },
                    Kind{ "TwoUnitsEgressMask", twoUnitLeaf( "egress-mask" ) },
                    Kind{ "TwoUnitsClassId", twoUnitLeaf( "class-id" ) } ),
   []( auto const & kind ) { return kind.param.name; } );

}  // namespace
