#include <Scenario/Document.h>

#include <Scenario/Survey.h>

namespace Scenario {

Value documentIn( std::string const & text, std::string const & file ) {
   std::string const bare = withoutMark( text );
   survey( bare, file );
   return { YAML::Load( bare ), 1, "the scenario" };
}

}  // namespace Scenario
