#include <CommandLine/Explain.h>

#include <algorithm>

#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Questions/ExplanationPart.h>
#include <Steps/Capture.h>
#include <Steps/Frame.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Text/Numbers.h>
#include <Text/Wrapping.h>

#include <unistd.h>

namespace CommandLine {

namespace {

class Explained final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      if ( auto const * const explained = std::get_if< Story::FrameExplained >( &event ) ) {
         frame_ = explained->frame;
      }
   }

   Story::Node const & frame() const { return frame_; }

 private:
   Story::Node frame_;
};

// From 1.
std::optional< U64 > countIn( std::string_view text ) {
   auto const number = Text::numberIn< U64 >( text );
   return number && *number != 0 ? number : std::nullopt;
}

[[noreturn]] void refuseFrame( std::string const & text, std::string const & why ) {
   refuseValue( "FRAME", "'" + text + "' " + why );
}

Traffic::FrameAsked frameAskedIn( std::string const & text ) {
   if ( auto const number = countIn( text ) ) {
      return Traffic::SentFrame{ *number };
   }
   std::size_t const colon = text.rfind( ':' );
   auto const number = colon == std::string::npos
                          ? std::nullopt
                          : countIn( std::string_view( text ).substr( colon + 1 ) );
   if ( !number ) {
      refuseFrame( text,
                   "is no frame; give its number, as in 7, CAPTURE:NUMBER, or the words of "
                   "the step 'frame': '{ from: 10.0.0.2, vni: 10100, source: "
                   "00:00:5e:00:53:02 }'" );
   }
   std::filesystem::path const file = text.substr( 0, colon );
   std::error_code error;
   if ( !std::filesystem::is_regular_file( file, error ) ) {
      refuseFrame( text, "names no capture; there is no file '" + file.string() + "'" );
   }
   return Traffic::CapturedFrame{ file, *number, {} };
}

// The interface of the step that plays the capture; nothing without one.
std::optional< Pelk::IntfId > arrivalIn( Scenario::Model const & scenario,
                                         std::filesystem::path const & file ) {
   for ( Scenario::Step const & step : scenario.steps ) {
      auto const * const capture = step.as< Steps::Capture >();
      std::error_code error;
      if ( capture && std::filesystem::equivalent( capture->file, file, error ) ) {
         return capture->on;
      }
   }
   return std::nullopt;
}

}  // namespace

void Explain::declare( CLI::App & app ) {
   scenario_.declare( app );
   value( app, "FRAME", frame_,
          "The number of a frame that the scenario sends, a frame of a capture "
          "('fabric.pcap:3'), or the words of the step 'frame' ('{ from: 10.0.0.2, vni: "
          "10100, source: 00:00:5e:00:53:02 }')" )
      .required()
      .check( problemOfName );
   after_.declare( app,
                   "Explain by the state after this step, 0 for start-up, or at this time of a "
                   "record, as in 2.5s; by default a sent frame by the state when it is sent, and "
                   "any other by the state after the last step" );
   value( app, "--on", on_,
          "The interface that a capture's frame comes in on; by default that of the step "
          "that plays the capture, or else the first underlay interface" )
      .type( "INTERFACE" )
      .check( problemOfName );
   value( app, "--interface", interface_,
          "Explain this interface or port channel alone: why the frame leaves by it or does "
          "not" )
      .check( problemOfName );
}

void Explain::readWords() {
   scenario_.readWords();
   after_.readWords();
   if ( !isWritten() ) {
      asked_ = frameAskedIn( frame_ );
   }
   if ( on_.empty() ) {
      return;
   }
   auto * const captured = asked_ ? std::get_if< Traffic::CapturedFrame >( &*asked_ ) : nullptr;
   if ( !captured ) {
      refuseValue( "--on", "it is for a frame of a capture; leave it out" );
   }
   try {
      captured->on = Pelk::IntfId::fromString( on_ );
   } catch ( Quelm::TextError const & error ) {
      refuseValue( "--on", error.what() );
   }
}

Scenario::Model Explain::read( Traffic::FrameAsked & asked ) const {
   if ( isWritten() ) {
      Scenario::Model scenario = scenario_.read( { { "FRAME", "frame: " + frame_ } } );
      bool const isAdded = scenario.steps.size() == scenario.ownSteps + 1;
      auto const * const frame = isAdded ? scenario.steps.back().as< Steps::Frame >() : nullptr;
      if ( !frame ) {
         throw Story::InputError(
            "FRAME: give the words of one frame in braces, and nothing else" );
      }
      asked = Traffic::WrittenFrame{ frame->fields, frame->on };
      scenario.steps.pop_back();
      return scenario;
   }
   Scenario::Model scenario = scenario_.read();
   asked = *asked_;
   auto * const captured = std::get_if< Traffic::CapturedFrame >( &asked );
   if ( captured && !captured->on ) {
      captured->on = arrivalIn( scenario, captured->file );
   }
   return scenario;
}

Story::ExitCode Explain::perform( std::ostream & out ) {
   Traffic::FrameAsked asked;
   Scenario::Model const scenario = read( asked );
   ScenarioRun what{ scenario, scenario_.config(), {}, scenario_.turnLimit(), scenario_.record() };
   what.config.show = asked;
   after_.limit( what.config, scenario, scenario_.record() );
   Explained explained;
   auto const code = runForAnswer( what, explained );
   if ( code == Story::ExitCode::Held ) {
      Story::Node const frame = interface_.empty()
                                   ? explained.frame()
                                   : Questions::partAbout( explained.frame(), interface_ );
      out << ( scenario_.isJson() ? Story::documentText( jsonOf( frame ) )
                                  : Text::narrowed( treeText( frame ), widthOf( STDOUT_FILENO ) ) );
   }
   return code;
}

}  // namespace CommandLine
