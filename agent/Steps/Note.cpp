#include <Steps/Note.h>

#include <Scenario/Shape.h>
#include <Scenario/Values.h>

namespace Steps {

std::string Note::shape() {
   return Scenario::Shape::of( "text", "A line of the story." );
}

void Note::read( Reading & reading, Value const & value ) {
   text = stringOf( reading, value ).value_or( "" );
}

}  // namespace Steps
