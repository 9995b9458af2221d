// After every step of every scenario that ships, the plug-in's own pass over its rules and the
// audit from outside come to the same end; or the state is one of the known limits of the pass.
#include <algorithm>
#include <map>

#include <gtest/gtest.h>

#include <Host/Agent.h>
#include <Process/Child.h>
#include <Process/RingMemory.h>
#include <Scenario/Reader.h>
#include <Shipped.h>
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
   std::string audit;          // the faults found; empty: in step
   bool isNotRetried = false;  // and all of them are rules that found no room
   std::string pass;           // the assertion that it stopped at; empty: it held

   bool agree() const { return audit.empty() == pass.empty(); }
};

std::string faultsIn( Story::Audited const & audited ) {
   std::string faults;
   for ( Audit::Difference const & difference : audited.differences ) {
      if ( !isKnown( difference.kind ) ) {
         faults += ( faults.empty() ? "" : ", " ) + std::string( nameOf( difference.kind ) ) +
                   " of " + difference.rule;
      }
   }
   return faults;
}

bool isNotRetried( Story::Audited const & audited ) {
   return std::all_of( audited.differences.begin(), audited.differences.end(),
                       []( Audit::Difference const & difference ) {
                          return isKnown( difference.kind ) ||
                                 difference.kind == Audit::Kind::notRetried;
                       } );
}

class VerifyShipped : public testing::TestWithParam< std::string > {
 protected:
   // The scenario up to this step, in a process of its own, and what both say then.
   static Verdicts verdictsAfter( Scenario::Model scenario, std::size_t steps ) {
      scenario.steps.resize( steps );
      scenario.steps.push_back( { Scenario::Verify::both, 0 } );
      Process::RingMemory const ring;
      Support::Recorder story;
      Process::runInChild(
         [ & ]( Story::Observer & observer ) {
            Host::Agent( scenario, { scenario.file, Support::plugin(), {}, {}, {} }, ring.bytes(),
                         observer )
               .run();
         },
         ring.bytes(), story );
      auto const stopped = story.all< Story::Stopped >();
      Story::Audited const audited = story.all< Story::Audited >().back();
      return { faultsIn( audited ), isNotRetried( audited ),
               stopped.empty() ? "" : stopped.back().assertion.value().expression };
   }

   // Whether it is the limit that this scenario is known to show.
   static bool isLimit( Verdicts const & verdicts ) {
      auto const limit = kLimits.find( GetParam() );
      return limit != kLimits.end() && limit->second == verdicts.pass &&
             ( !limit->second.empty() || verdicts.isNotRetried );
   }

   // Whether a step changes anything.
   static bool isEvent( Scenario::Step const & step ) {
      return !std::holds_alternative< Scenario::Note >( step.action ) &&
             !std::holds_alternative< Scenario::Expect >( step.action );
   }
};

TEST_P( VerifyShipped, ThePassAndTheAuditAgreeAfterEveryStep ) {
   auto const scenario = Scenario::read( Shipped::fileOf( GetParam() ) );
   bool hasShownItsLimit = false;
   for ( std::size_t step = 0; step < scenario.steps.size(); ++step ) {
      if ( !isEvent( scenario.steps[ step ] ) ) {
         continue;
      }
      Verdicts const verdicts = verdictsAfter( scenario, step + 1 );
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
