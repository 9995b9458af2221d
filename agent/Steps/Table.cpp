#include <Steps/Table.h>

#include <Scenario/Shape.h>
#include <Steps/Call.h>
#include <Steps/Capture.h>
#include <Steps/ClassIdAllocatorStep.h>
#include <Steps/Delete.h>
#include <Steps/DesignatedForwarder.h>
#include <Steps/DriftStep.h>
#include <Steps/Dump.h>
#include <Steps/EndAtCall.h>
#include <Steps/Expect.h>
#include <Steps/FailCall.h>
#include <Steps/ForeignEntries.h>
#include <Steps/Frame.h>
#include <Steps/Note.h>
#include <Steps/Publish.h>
#include <Steps/Ready.h>
#include <Steps/RefuseEntry.h>
#include <Steps/Replace.h>
#include <Steps/Set.h>
#include <Steps/Turn.h>
#include <Steps/Verify.h>
#include <Steps/Withdraw.h>

namespace Steps {

namespace {

template< typename Kind, typename Base >
std::shared_ptr< Base const > readAs( Reading & reading, Value const & value ) {
   auto const step = std::make_shared< Kind >();
   step->read( reading, value );
   return step;
}

template< typename Kind > std::string shapeOf( std::string_view name ) {
   std::string const shape = Kind::shape();
   return shape.empty() ? Scenario::Shape::of( name ) : shape;
}

template< typename Kind > Row step( std::string_view name ) {
   return { name, shapeOf< Kind >( name ), readAs< Kind, Scenario::Action >, nullptr,
            Kind::vocabulary };
}

// A step that `turn` can hold as well.
template< typename Kind > Row turnPart( std::string_view name ) {
   return { name, shapeOf< Kind >( name ), readAs< Kind, Scenario::Action >,
            readAs< Kind, TurnPart >, Kind::vocabulary };
}

}  // namespace

std::vector< Row > const & table() {
   static std::vector< Row > const rows{ step< Note >( "note" ),
                                         turnPart< Ready >( "ready" ),
                                         turnPart< Publish >( "publish" ),
                                         turnPart< Withdraw >( "withdraw" ),
                                         turnPart< Replace >( "replace" ),
                                         turnPart< Set >( "set" ),
                                         turnPart< Delete >( "delete" ),
                                         turnPart< Call >( "call" ),
                                         step< Turn >( "turn" ),
                                         step< Frame >( "frame" ),
                                         step< Capture >( "frames" ),
                                         step< DesignatedForwarder >( "designated-forwarder" ),
                                         step< ForeignEntries >( "foreign-entries" ),
                                         step< ClassIdAllocatorStep >( "class-id-allocator" ),
                                         step< Dump >( "dump" ),
                                         step< DriftStep >( "drift" ),
                                         step< FailCall >( "fail-call" ),
                                         step< RefuseEntry >( "refuse-entry" ),
                                         step< EndAtCall >( "end-at-call" ),
                                         step< Verify >( "verify" ),
                                         step< Expect >( "expect" ) };
   return rows;
}

}  // namespace Steps
