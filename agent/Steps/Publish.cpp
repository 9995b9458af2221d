#include <Steps/Publish.h>

#include <Scenario/Course.h>
#include <Scenario/Description.h>
#include <Scenario/Parts.h>
#include <Steps/Context.h>

namespace Steps {

void Publish::read( Reading & reading, Value const & value ) {
   readPublish( reading, value, changes );
}

std::string Publish::description() const {
   return "publish" + Scenario::description( changes, false );
}

void Publish::follow( Scenario::Course & course ) const {
   course.publish( changes );
}

void Publish::queue( Context const & context, int ) const {
   queuePublished( context, changes );
}

void Publish::change( Context const & context, int /*line*/ ) const {
   for ( Scenario::Change const & one : changes ) {
      context.at( one.line, [ & ] { context.published.publish( one.what ); } );
   }
}

void queuePublished( Context const & context, std::vector< Scenario::Change > const & changes ) {
   for ( Scenario::Change const & one : changes ) {
      context.turnNew( one.line, [ &context, &one ] { context.published.publish( one.what ); } );
   }
}

}  // namespace Steps
