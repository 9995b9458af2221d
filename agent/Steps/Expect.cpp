#include <Steps/Expect.h>

#include <algorithm>

#include <Expectations/Table.h>
#include <Scenario/Shape.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

void tell( Context const & context, Expectations::Expectation const & expectation ) {
   expectation.what->tell( context.evidence, context.placeOf( expectation.line ),
                           context.observer );
}

}  // namespace

std::string Expect::shape() {
   namespace Shape = Scenario::Shape;
   return Shape::anyOf(
      { Shape::of( "expect" ), Shape::listOf( Shape::of( "expect" ), "", R"({"minItems": 1})" ) },
      "The expectations at this point: a mapping of expectations, or a list of such "
      "mappings." );
}

void Expect::read( Reading & reading, Value const & value ) {
   Expectations::readExpectations( reading, value, expectations );
}

std::string Expect::description() const {
   std::string text;
   for ( Expectations::Expectation const & one : expectations ) {
      text += ( text.empty() ? " " : ", " ) + one.what->description();
   }
   return "expect" + text;
}

bool Expect::isAboutFrames() const {
   return std::any_of( expectations.begin(), expectations.end(),
                       []( Expectations::Expectation const & one ) {
                          return one.what->isAboutFrames();
                       } );
}

void Expect::queue( Context const & context, int ) const {
   for ( Expectations::Expectation const & one : expectations ) {
      context.turnNew( one.line, [ &context, &one ] { tell( context, one ); } );
   }
}

}  // namespace Steps
