#include <Steps/Withdraw.h>

#include <Scenario/Course.h>
#include <Scenario/Description.h>
#include <Scenario/Parts.h>
#include <Steps/Context.h>

namespace Steps {

void Withdraw::read( Reading & reading, Value const & value ) {
   readWithdraw( reading, value, changes );
}

std::string Withdraw::description() const {
   return "withdraw" + Scenario::description( changes, true );
}

void Withdraw::follow( Scenario::Course & course ) const {
   course.withdraw( changes );
}

void Withdraw::queue( Context const & context, int ) const {
   for ( Scenario::Change const & one : changes ) {
      context.turnNew( one.line, [ &context, &one ] { context.published.withdraw( one.what ); } );
   }
}

void Withdraw::change( Context const & context, int /*line*/ ) const {
   for ( Scenario::Change const & one : changes ) {
      context.at( one.line, [ & ] { context.published.withdraw( one.what ); } );
   }
}

}  // namespace Steps
