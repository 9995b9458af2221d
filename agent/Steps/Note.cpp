#include <Steps/Note.h>

#include <Scenario/Values.h>

namespace Steps {

void Note::read( Reading & reading, Value const & value ) {
   text = stringOf( reading, value ).value_or( "" );
}

}  // namespace Steps
