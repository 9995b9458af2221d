#include <Shell/Session.h>

#include <algorithm>

#include <fmt/format.h>

#include <Scenario/File.h>
#include <Shell/SavedScenario.h>
#include <Story/InputError.h>

namespace Shell {

namespace {

// The step of a list counts its lines from that one.
Scenario::AddedStep addedBy( Done const & step, std::size_t behind ) {
   auto const before = static_cast< std::size_t >( std::max( step.line - 1, 0 ) );
   return { std::string( Session::kInput ), std::string( before, '\n' ) + step.text, behind };
}

}  // namespace

Session::Session( std::filesystem::path file )
      : file_( std::move( file ) ), text_( Scenario::textIn( file_ ) ) {
   Scenario::Model const whole = Steps::readScenarioText( text_, file_ );
   name_ = whole.name;
   description_ = whole.description;
   own_ = whole.ownSteps;
}

// --- The list

std::size_t Session::ownIn( std::vector< Done > const & steps ) {
   return static_cast< std::size_t >(
      std::count_if( steps.begin(), steps.end(),
                     []( Done const & step ) { return !step.isTyped(); } ) );
}

std::string Session::position() const {
   std::size_t const typed = done() - ownDone();
   return fmt::format( "{} {}/{}{}{}", name_, ownDone(), own_,
                       typed == 0 ? "" : fmt::format( " +{}", typed ),
                       isStopped_ ? " stopped" : "" );
}

Story::ExitCode Session::verdict() const {
   if ( isStopped_ && !isStopJudged_ ) {
      return Story::ExitCode::Stopped;
   }
   return failed_.empty() ? Story::ExitCode::Held : Story::ExitCode::ExpectationFailed;
}

// --- The scenario of the list

Scenario::Model Session::read( std::vector< Done > const & steps,
                               std::vector< Scenario::AddedStep > const & more ) const {
   std::vector< Scenario::AddedStep > added;
   std::size_t own = 0;
   for ( Done const & step : steps ) {
      if ( step.isTyped() ) {
         added.push_back( addedBy( step, own ) );
      } else {
         ++own;
      }
   }
   added.insert( added.end(), more.begin(), more.end() );
   Scenario::Model model = Steps::readScenarioText( text_, file_, added, own );
   // To those who ask, the list is the scenario.
   model.ownSteps = std::min( steps.size(), model.steps.size() );
   return model;
}

Scenario::Model Session::scenario( std::vector< Scenario::AddedStep > const & more ) const {
   return read( done_, more );
}

Scenario::Model Session::scenarioAfter( std::size_t steps ) const {
   auto const end = done_.begin() + static_cast< std::ptrdiff_t >( steps );
   return read( { done_.begin(), end } );
}

// --- Further steps

Attempt Session::typed( std::string const & text, int line ) const {
   std::vector< Done > steps = done_;
   steps.push_back( { text, line } );
   Scenario::Model model = read( steps );
   if ( model.steps.size() != steps.size() ) {
      throw Story::InputError( "the step is for the other variant only; leave 'only-on' out" );
   }
   return { std::move( steps ), std::move( model ) };
}

Attempt Session::ownUpTo( std::size_t number ) const {
   std::vector< Done > steps = done_;
   steps.resize( steps.size() + number - ownDone() );
   Scenario::Model model = read( steps );
   return { std::move( steps ), std::move( model ) };
}

void Session::take( Attempt const & attempt, Ending const & ending ) {
   std::size_t const all = attempt.steps.size();
   std::size_t kept = all;
   if ( ending.kind == Ending::Kind::cutShort ) {
      kept = std::clamp( ending.step, std::size_t{ 1 }, all + 1 ) - 1;
   } else if ( ending.kind == Ending::Kind::stopped ) {
      kept = std::min( ending.step, all );
   }
   kept = std::max( kept, done_.size() );
   done_.assign( attempt.steps.begin(),
                 attempt.steps.begin() + static_cast< std::ptrdiff_t >( kept ) );
   failed_ = ending.failed;
   failed_.erase( failed_.upper_bound( kept ), failed_.end() );
   isStopped_ = ending.kind == Ending::Kind::stopped;
   isStopJudged_ = ending.isJudged;
   ++changes_;
}

void Session::undo() {
   if ( done_.empty() ) {
      throw Story::InputError( isStopped_ ? "the plug-in stops in start-up, which no undo changes"
                                          : "no step is left to undo" );
   }
   done_.pop_back();
   failed_.erase( failed_.upper_bound( done_.size() ), failed_.end() );
   isStopped_ = false;
   ++changes_;
}

std::string Session::saved( std::filesystem::path const & file ) const {
   return savedText( { file_, text_ }, done_, file );
}

}  // namespace Shell
