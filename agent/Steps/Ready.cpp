#include <Steps/Ready.h>

#include <algorithm>
#include <iterator>

#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

std::string digitsIn( std::string_view text ) {
   std::string digits;
   std::copy_if( text.begin(), text.end(), std::back_inserter( digits ),
                 []( char c ) { return c >= '0' && c <= '9'; } );
   return digits;
}

// The text probably stands for the other one. Points that differ in a number are different points.
bool isAlmost( std::string_view text, std::string_view meant ) {
   constexpr std::size_t kMostDifferent = 3;
   auto const [ shorter, longer ] = std::minmax( { text.size(), meant.size() } );
   return text != meant && longer - shorter <= kMostDifferent && text.starts_with( "sub" ) &&
          digitsIn( text ) == digitsIn( meant ) && !Text::nearest( text, { meant } ).empty();
}

}  // namespace

std::string Ready::shape() {
   return Scenario::Shape::json(
      R"({"type": "string", "pattern": "^subagents::.+"})",
      "A sub-agent's dependency point becomes ready: subagents::l2Ready." );
}

void Ready::read( Reading & reading, Value const & value ) {
   std::string_view const group = "subagents::";
   auto const written = stringOf( reading, value );
   if ( !written ) {
      return;
   }
   if ( isAlmost( *written, "subagents::l2Ready" ) ) {
      reading.problem( value.line, "ready is " + Scenario::inQuotes( *written ) +
                                      "; did you mean 'subagents::l2Ready'?" );
   } else if ( !written->starts_with( group ) || *written == group ) {
      reading.problem( value.line, "ready is " + Scenario::inQuotes( *written ) +
                                      "; a sub-agent's dependency point is expected, as in "
                                      "subagents::l2Ready" );
   } else {
      point = written->substr( group.size() );
   }
}

void Ready::change( Context const & context, int /*line*/ ) const {
   auto const & points = context.published.common()->sliceDependencyPoints();
   points->subAgentDependencyPoints()->readyIs( point );
}

}  // namespace Steps
