// After every step of every scenario that ships, the plug-in's own pass over its rules and the
// audit from outside come to the same end; or the state is one of the known limits of the pass.
#include <algorithm>
#include <map>
#include <stdexcept>

#include <gtest/gtest.h>

#include <Host/Agent.h>
#include <Process/Child.h>
#include <Process/RingMemory.h>
#include <Shipped.h>
#include <Steps/Expect.h>
#include <Steps/Note.h>
#include <Steps/Reader.h>
#include <Steps/Verify.h>
#include <Support.h>

namespace {

// Where the two do not agree on a state that is right, which docs/limits.md describes: the
// assertion that the pass stops at; none where the pass is skipped, because a group was full, and
// the audit finds what has not been tried again.
std::map< std::string, std::string > const kLimits{
   { "class-ids-run-out", "unitUsesTcamsForTepIp( unit, tepIp )" },
   { "egress-group-full", "" },
   { "grant-changed", "unitUsesTcamsForTepIp( unit, tepIp )" },
   { "grant-late", "unitUsesTcamsForTepIp( unit, tepIp )" },
   { "tcam-full", "" },
   { "tcam-full-class-id", "" },
   { "two-units", "portCount == expPortCount" },
   { "two-units-class-id", "portCount == expPortCount" },
   { "vp-change", "unitUsesTcamsForTepIp( unit, tepIp )" },
   { "vtep-flap", "tepIpToEntry( unit )->esPbmp( tepIp ) == ubmp" },
   { "vtep-flap-class-id", "0" },
};

// What both said of one state.
struct Verdicts {
   std::string audit;          // the faults found; empty: in sync
   bool isNotRetried = false;  // and all of them are rules that found no room
   std::string pass;           // the assertion that it stopped at; empty: it held

   bool agree() const { return audit.empty() == pass.empty(); }
};

std::string faultsIn( Story::Audited const & audited ) {
   std::string faults;
   for ( Story::Difference const & difference : audited.differences ) {
      if ( !isKnown( difference.kind ) ) {
         faults += ( faults.empty() ? "" : ", " ) + std::string( nameOf( difference.kind ) ) +
                   " of " + difference.rule;
      }
   }
   return faults;
}

bool isNotRetried( Story::Audited const & audited ) {
   return std::all_of( audited.differences.begin(), audited.differences.end(),
                       []( Story::Difference const & difference ) {
                          return isKnown( difference.kind ) ||
                                 difference.kind == Story::DifferenceKind::notRetried;
                       } );
}

// Hands on what the verdicts are made from, and the end: much more happens in a run.
class Relevant final : public Story::Observer {
 public:
   explicit Relevant( Story::Observer & observer ) : observer_( observer ) {}

   void onEvent( Story::Event const & event ) override {
      if ( isOneOf< Story::StepBegins, Story::Audited, Story::BadInput, Story::RunEnds >(
              event ) ) {
         observer_.onEvent( event );
      }
   }

 private:
   template< typename... Kinds > static bool isOneOf( Story::Event const & event ) {
      return ( std::holds_alternative< Kinds >( event ) || ... );
   }

   Story::Observer & observer_;
};

class VerifyShipped : public testing::TestWithParam< std::string > {
 protected:
   // What both say after each step that changes anything. One run is asked after every such step; a
   // pass that stops its process ends it there, and the next run is asked from the next step on.
   static std::map< std::size_t, Verdicts > verdictsOf( Scenario::Model const & scenario ) {
      std::vector< std::size_t > asked;
      for ( std::size_t step = 0; step < scenario.steps.size(); ++step ) {
         if ( isEvent( scenario.steps[ step ] ) ) {
            asked.push_back( step );
         }
      }
      std::map< std::size_t, Verdicts > result;
      while ( !asked.empty() ) {
         auto const told = verdictsAfter( asked, scenario );
         for ( std::size_t n = 0; n < told.size(); ++n ) {
            result[ asked[ n ] ] = told[ n ];
         }
         asked.erase( asked.begin(), asked.begin() + std::ssize( told ) );
      }
      return result;
   }

   // What both say after these steps, up to the first at which the pass stops: a run in a process
   // of its own. At least one.
   static std::vector< Verdicts > verdictsAfter( std::vector< std::size_t > const & steps,
                                                 Scenario::Model const & scenario ) {
      auto const story = played( withVerification( scenario, steps ) );
      std::vector< Verdicts > result;
      bool isAsked = false;
      for ( Story::Event const & event : story ) {
         if ( auto const * const step = std::get_if< Story::StepBegins >( &event ) ) {
            isAsked = step->place == scenario.sources.placeOf( kAskedLine );
         } else if ( auto const * const audited = std::get_if< Story::Audited >( &event );
                     audited && isAsked ) {
            result.push_back( { faultsIn( *audited ), isNotRetried( *audited ), "" } );
         } else if ( auto const * const stopped = std::get_if< Story::Stopped >( &event ) ) {
            result.at( result.size() - 1 ).pass = stopped->assertion.value().expression;
         }
      }
      return result.empty() ? throw std::logic_error( scenario.file + ": no audit" ) : result;
   }

   static Scenario::Model withVerification( Scenario::Model const & scenario,
                                            std::vector< std::size_t > const & steps ) {
      Scenario::Model result = scenario;
      result.steps.clear();
      for ( std::size_t step = 0; step < scenario.steps.size(); ++step ) {
         result.steps.push_back( scenario.steps[ step ] );
         if ( std::binary_search( steps.begin(), steps.end(), step ) ) {
            result.steps.push_back( { std::make_shared< Steps::Verify >(), kAskedLine } );
         }
      }
      return result;
   }

   static std::vector< Story::Event > played( Scenario::Model const & scenario ) {
      Process::RingMemory const ring;
      Support::Recorder story;
      Process::runInChild(
         [ & ]( Story::Observer & observer ) {
            Relevant relevant( observer );
            Host::Agent( scenario, { scenario.file, Support::plugin(), {}, {}, {} }, ring.bytes(),
                         relevant )
               .run();
         },
         ring.bytes(), story );
      return story.events();
   }

   // Where no step of a scenario can stand.
   static constexpr int kAskedLine = 0;

   // Whether it is the limit that this scenario is known to show.
   static bool isLimit( Verdicts const & verdicts ) {
      auto const limit = kLimits.find( GetParam() );
      return limit != kLimits.end() && limit->second == verdicts.pass &&
             ( !limit->second.empty() || verdicts.isNotRetried );
   }

   // Whether a step changes anything.
   static bool isEvent( Scenario::Step const & step ) {
      return !step.as< Steps::Note >() && !step.as< Steps::Expect >();
   }
};

TEST_P( VerifyShipped, ThePassAndTheAuditAgreeAfterEveryStep ) {
   auto const scenario = Steps::readScenario( Shipped::fileOf( GetParam() ) );
   bool hasShownItsLimit = false;
   for ( auto const & [ step, verdicts ] : verdictsOf( scenario ) ) {
      hasShownItsLimit |= !verdicts.agree();
      EXPECT_TRUE( verdicts.agree() || isLimit( verdicts ) )
         << scenario.file << ":" << scenario.steps[ step ].line << "\naudit: " << verdicts.audit
         << "\npass: " << verdicts.pass;
   }
   EXPECT_EQ( hasShownItsLimit, kLimits.contains( GetParam() ) );
}

TEST( VerifyShippedLimits, AreDescribed ) {
   std::string const limits =
      Support::contentOf( std::filesystem::path( VORNAL_SOURCE_DIR ) / "docs/limits.md" );
   for ( auto const & [ scenario, expression ] : kLimits ) {
      EXPECT_TRUE( expression.empty() ||
                   limits.find( '`' + expression + '`' ) != std::string::npos )
         << expression;
   }
   EXPECT_NE( limits.find( "A VTEP that found no room is not tried again" ), std::string::npos );
}

INSTANTIATE_TEST_SUITE_P( Scenario, VerifyShipped, testing::ValuesIn( Shipped::scenarios() ),
                          Shipped::nameOf );

}  // namespace
