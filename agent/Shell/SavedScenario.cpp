#include <Shell/SavedScenario.h>

#include <algorithm>
#include <system_error>

#include <Scenario/Whole.h>
#include <Shell/Session.h>

namespace Shell {

namespace {

namespace fs = std::filesystem;
using Scenario::PlacedStep;
using Scenario::Yaml;

// The steps that were carried out, in their order.
std::vector< PlacedStep > inOrder( std::vector< PlacedStep > const & own,
                                   std::vector< Done > const & done ) {
   std::vector< PlacedStep > steps;
   auto next = own.begin();
   for ( Done const & step : done ) {
      steps.push_back( step.isTyped() ? PlacedStep{ Scenario::yamlIn( step.text ), {} } : *next++ );
   }
   return steps;
}

}  // namespace

std::string savedText( Original const & original, std::vector< Done > const & done,
                       fs::path const & file ) {
   Scenario::Whole const whole( original.file, original.text );
   std::size_t const base = whole.baseSteps();
   auto const firstTyped =
      std::find_if( done.begin(), done.end(), []( Done const & step ) { return step.isTyped(); } );
   bool const isBaseDone = static_cast< std::size_t >( firstTyped - done.begin() ) >= base;
   auto const steps = inOrder( whole.steps(), done );
   std::error_code error;
   bool const canName =
      fs::is_regular_file( whole.base(), error ) && !fs::equivalent( whole.base(), file, error );
   if ( !isBaseDone || !canName ) {
      return textOf( whole.document( file, steps ) );
   }
   std::vector< PlacedStep > const further( steps.begin() + static_cast< std::ptrdiff_t >( base ),
                                            steps.end() );
   return textOf( basedOn( whole, file, listOf( file, further ) ) );
}

}  // namespace Shell
