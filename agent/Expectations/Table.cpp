#include <Expectations/Table.h>

#include <Expectations/AuditExpected.h>
#include <Expectations/Frames.h>
#include <Expectations/LogLineExpected.h>
#include <Expectations/PluginReady.h>
#include <Expectations/Rules.h>
#include <Expectations/State.h>
#include <Expectations/Stop.h>
#include <Expectations/TcamGroupsAskedFor.h>
#include <Expectations/TraceLineExpected.h>
#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Story/Observer.h>

namespace Expectations {

namespace {

template< typename Kind >
std::shared_ptr< Expected const > readAs( Reading & reading, Value const & value ) {
   auto const expected = std::make_shared< Kind >();
   expected->read( reading, value );
   return expected;
}

template< typename Kind > Row expectation( std::string_view name ) {
   std::string const shape = Kind::shape();
   return { name, shape.empty() ? Scenario::Shape::of( name ) : shape, readAs< Kind >,
            Kind::vocabulary };
}

WordList words() {
   WordList list{ { "expect", "The expectations at this point.", R"({"minProperties": 1})" }, {} };
   for ( Row const & row : table() ) {
      list.words.push_back( { row.name, "", row.shape } );
   }
   return list;
}

void readMembers( Reading & reading, Value const & value,
                  std::vector< Expectation > & expectations ) {
   if ( !isFilled( reading, value, words() ) ) {
      return;
   }
   for ( auto const & [ word, about ] : wordValuesOf( reading, value, words() ) ) {
      if ( auto what = table()[ word ].read( reading, about ) ) {
         expectations.push_back( { std::move( what ), about.line } );
      }
   }
}

}  // namespace

std::vector< Row > const & table() {
   static std::vector< Row > const rows{ expectation< PluginReady >( "plug-in" ),
                                         expectation< TcamGroupsAskedFor >( "tcam-groups" ),
                                         { "state", Scenario::Shape::of( "state" ), readState,
                                           stateVocabulary },
                                         expectation< RulesLike >( "rules" ),
                                         expectation< FramesLike >( "frames" ),
                                         { "audit", auditShape(), readAudit, auditVocabulary },
                                         expectation< LogLineExpected >( "log" ),
                                         expectation< TraceLineExpected >( "trace" ),
                                         expectation< Stop >( "stop" ) };
   return rows;
}

void readExpectations( Reading & reading, Value const & value,
                       std::vector< Expectation > & expectations ) {
   if ( !value.node.IsSequence() ) {
      readMembers( reading, value, expectations );
   } else if ( isFilled( reading, value, words() ) ) {
      for ( Value const & mapping : listOf( reading, value ) ) {
         readMembers( reading, mapping, expectations );
      }
   }
}

void ExpectedNow::tell( Evidence const & evidence, std::string const & place,
                        Story::Observer & observer ) const {
   Finding const finding = check( evidence );
   observer.onEvent( Story::ExpectationChecked{ description(), place, finding.isAsExpected,
                                                finding.isAsExpected ? "" : finding.found } );
}

std::vector< WordList > Expected::vocabulary() {
   return {};
}

std::string Expected::shape() {
   return {};
}

std::vector< WordList > vocabulary() {
   std::vector< WordList > all{ words() };
   for ( Row const & row : table() ) {
      std::vector< WordList > const more = row.vocabulary();
      all.insert( all.end(), more.begin(), more.end() );
   }
   return all;
}

}  // namespace Expectations
