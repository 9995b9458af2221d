// After every step of every scenario that ships, the plug-in's own pass over its rules and the
// audit from outside come to the same end; or the state is one of the known limits of the pass.
#include <algorithm>

#include <gtest/gtest.h>

#include <Host/Agent.h>
#include <Process/Child.h>
#include <Process/RingMemory.h>
#include <Scenario/Reader.h>
#include <Shipped.h>
#include <Support.h>

namespace {

// What found no room is not tried again, and a pass is skipped while the group is known as full;
// the audit is not. That is a known limit, so it does not count here.
bool counts( Audit::Difference const & difference ) {
   return !isKnown( difference.kind ) && difference.kind != Audit::Kind::notRetried;
}

// What both said of one state.
struct Verdicts {
   std::string audit;  // the faults found; empty: in step
   std::string pass;   // the assertion that it stopped at; empty: it held
};

std::string faultsIn( Story::Audited const & audited ) {
   std::string faults;
   for ( Audit::Difference const & difference : audited.differences ) {
      if ( counts( difference ) ) {
         faults += ( faults.empty() ? "" : ", " ) + std::string( nameOf( difference.kind ) ) +
                   " of " + difference.rule;
      }
   }
   return faults;
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
      return { faultsIn( story.all< Story::Audited >().back() ),
               stopped.empty() ? "" : stopped.back().assertion.value().expression };
   }

   // Whether a step changes anything.
   static bool isEvent( Scenario::Step const & step ) {
      return !std::holds_alternative< Scenario::Note >( step.action ) &&
             !std::holds_alternative< Scenario::Expect >( step.action );
   }
};

TEST_P( VerifyShipped, ThePassAndTheAuditAgreeAfterEveryStep ) {
   auto const scenario = Scenario::read( Shipped::fileOf( GetParam() ) );
   std::string const limits =
      Support::contentOf( std::filesystem::path( VORNAL_SOURCE_DIR ) / "docs/limits.md" );
   for ( std::size_t step = 0; step < scenario.steps.size(); ++step ) {
      if ( !isEvent( scenario.steps[ step ] ) ) {
         continue;
      }
      Verdicts const verdicts = verdictsAfter( scenario, step + 1 );
      bool const isLimit =
         !verdicts.pass.empty() && limits.find( '`' + verdicts.pass + '`' ) != std::string::npos;
      EXPECT_TRUE( verdicts.audit.empty() == verdicts.pass.empty() || isLimit )
         << scenario.file << ":" << scenario.steps[ step ].line << "\naudit: " << verdicts.audit
         << "\npass: " << verdicts.pass;
   }
}

INSTANTIATE_TEST_SUITE_P( Scenario, VerifyShipped, testing::ValuesIn( Shipped::scenarios() ),
                          Shipped::nameOf );

}  // namespace
