#include <CommandLine/Moment.h>

#include <cmath>

#include <fmt/format.h>

#include <CommandLine/RunScenario.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Story/InputError.h>
#include <Text/Numbers.h>

namespace CommandLine {

namespace {

// "2.5s", up to a year.
std::optional< U64 > timeIn( std::string_view text ) {
   constexpr double kLongest = 366.0 * 24 * 3600;
   constexpr double kSecond = 1e9;
   if ( !text.ends_with( 's' ) ) {
      return std::nullopt;
   }
   auto const seconds = Text::numberIn< double >( text.substr( 0, text.size() - 1 ) );
   bool const isTime = seconds && *seconds >= 0 && *seconds <= kLongest;
   return isTime ? std::optional( static_cast< U64 >( std::llround( *seconds * kSecond ) ) )
                 : std::nullopt;
}

}  // namespace

void Moment::declare( CLI::App & app, std::string const & purpose ) {
   value( app, option_, text_, purpose ).type( "STEP" ).check( problemOfName );
}

void Moment::readWords() {
   step_ = Text::numberIn< U32 >( text_ );
   time_ = timeIn( text_ );
   if ( isGiven() && !step_ && !time_ ) {
      refuseValue(
         option_, "'" + text_ +
                     "' is no step; give its number, 0 for start-up, or of a record a time such as "
                     "2.5s" );
   }
}

void Moment::checkStepOf( RecordedRun const & record, U32 step, std::size_t last ) const {
   if ( step > last ) {
      throw Story::InputError( fmt::format( "{} {}: {} ends with step {}{}", option_, text_,
                                            record.file().string(), last,
                                            record.cutText().empty() ? "" : ", where it is cut" ) );
   }
}

void Moment::limit( Host::AgentConfig & config, Scenario::Model const & scenario,
                    RecordedRun const * record ) const {
   if ( !isGiven() ) {
      return;
   }
   if ( time_ && !record ) {
      throw Story::InputError( option_ + ' ' + text_ + ": " + config.scenario +
                               " is no record, and only a record knows times; give a step" );
   }
   std::optional< U32 > const step = time_ ? record->stepAt( *time_ ) : step_;
   if ( record ) {
      checkStepOf( *record, *step, config.lastStep.value_or( scenario.ownSteps ) );
   } else {
      checkStep( option_, step, scenario );
   }
   config.lastStep = step;
}

}  // namespace CommandLine
