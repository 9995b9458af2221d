#include <Scenario/Document.h>

#include <Scenario/Survey.h>

namespace Scenario {

Value documentIn( std::string const & text, std::string const & file ) {
   std::string const bare = withoutMark( text );
   survey( bare, file );
   return { parsed( bare ), 1, "the scenario" };
}

YAML::Node parsed( std::string const & text ) {
   // With a last line feed, as the survey saw it: the parser refuses some texts only without one.
   return YAML::Load( text + '\n' );
}

}  // namespace Scenario
