#include <Steps/Step.h>

#include <Scenario/Words.h>
#include <Steps/Context.h>

namespace Steps {

std::vector< WordList > Step::vocabulary() {
   return {};
}

std::string Step::shape() {
   return {};
}

void TurnPart::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context, line ] { change( context, line ); } );
}

}  // namespace Steps
