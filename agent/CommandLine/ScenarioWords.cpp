#include <CommandLine/ScenarioWords.h>

#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Scenario/File.h>
#include <Steps/Reader.h>

#include <unistd.h>

namespace CommandLine {

namespace {

std::string purposeOf( ScenarioWords::Answers answers, ScenarioWords::Takes takes ) {
   if ( answers == ScenarioWords::Answers::dialogue ) {
      return "The scenario's file, or a pipe";
   }
   return takes == ScenarioWords::Takes::records
             ? "The scenario's file, a pipe, '-' for standard input, or the record of a run"
             : "The scenario's file, a pipe, or '-' for standard input";
}

}  // namespace

void ScenarioWords::declare( CLI::App & app, Answers answers, Takes takes ) {
   if ( source_ ) {
      declareJson( app );
      return;
   }
   value( app, "SCENARIO", file_, purposeOf( answers, takes ) )
      .required()
      .type( "FILE" )
      .check( problemOfName );
   run_.declarePlugin( app );
   if ( answers == Answers::textOrJson ) {
      declareJson( app );
   }
   run_.declareTurnLimit( app );
}

void ScenarioWords::declareJson( CLI::App & app ) {
   flag( app, "--json", isJson_, "Print one JSON document instead of text" );
}

void ScenarioWords::readWords() {
   if ( !source_ ) {
      run_.readWords();
   }
}

ScenarioFile const & ScenarioWords::input() const {
   if ( !input_ ) {
      input_.emplace( file_ );
   }
   return *input_;
}

Scenario::Model ScenarioWords::read( AddedSteps const & added ) const {
   return source_ ? source_->read( added ) : input().read( added );
}

WholeScenario ScenarioWords::readWhole() const {
   if ( RecordedRun const * const run = record() ) {
      return { run->scenario( {} ), run->whole(), run->root() };
   }
   bool const isInput = file_ == "-";
   std::filesystem::path const file = isInput ? std::filesystem::path( "standard input" ) : file_;
   std::string const text =
      isInput ? Scenario::textOf( STDIN_FILENO, file ) : Scenario::textIn( file );
   Scenario::Model model = Steps::readScenarioText( text, file );
   return { std::move( model ), Scenario::Whole( file, text ) };
}

std::string ScenarioWords::nameOf( WholeScenario const & whole ) const {
   return file_ == "-" ? whole.model.file : file_.string();
}

Host::AgentConfig ScenarioWords::config() const {
   if ( source_ ) {
      return source_->config;
   }
   Host::AgentConfig config = input().config();
   config.plugin = run_.plugin();
   return config;
}

}  // namespace CommandLine
