#include <Story/Wording.h>

#include <fmt/format.h>

namespace Story {

std::string nameOf( std::optional< StepBegins > const & step ) {
   return step ? nameOf( *step ) : "the beginning";
}

std::string nameOf( StepBegins const & step ) {
   switch ( step.kind ) {
   case StepKind::StartUp: return "start-up";
   case StepKind::Verification: return "verification";
   case StepKind::Teardown: return "teardown";
   case StepKind::Scenario: break;
   }
   return fmt::format( "step {}", step.number );
}

std::string counted( std::size_t count, std::string const & thing ) {
   return fmt::format( "{} {}{}", count, thing, count == 1 ? "" : "s" );
}

}  // namespace Story
