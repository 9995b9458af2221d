#include <CommandLine/Show.h>

#include <iostream>
#include <sstream>

#include <CLI/CLI.hpp>

#include <CommandLine/RunScenario.h>
#include <Story/EntityText.h>
#include <Story/HumanWriter.h>
#include <Story/JsonForms.h>

namespace CommandLine {

namespace {

using Json = nlohmann::ordered_json;

class Shown final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      if ( auto const * const shown = std::get_if< Story::EntityShown >( &event ) ) {
         entities_.push_back( *shown );
      }
   }

   std::vector< Story::EntityShown > const & entities() const { return entities_; }

 private:
   std::vector< Story::EntityShown > entities_;
};

Json pathsJson( std::vector< Story::EntityShown > const & entities ) {
   Json json = Json::array();
   for ( Story::EntityShown const & shown : entities ) {
      json.push_back( { { "path", shown.path },
                        { "type", shown.tree.type },
                        { "identity", shown.tree.identity } } );
   }
   return { { "entities", std::move( json ) } };
}

StateDatabase::EntityPath pathOf( std::string const & text ) {
   try {
      return StateDatabase::EntityPath::fromString( text );
   } catch ( Quelm::TextError const & error ) {
      throw CLI::ValidationError( "PATH", "'" + text +
                                             "' is not the path of an entity such as "
                                             "'/evpn/status': " +
                                             error.what() );
   }
}

std::string problemOfWhat( std::string const & text ) {
   return text == "entities" ? "" : "'" + text + "' cannot be shown; give 'entities'";
}

}  // namespace

void Show::declare( CLI::App & app ) {
   scenario_.declare( app );
   app.add_option( "WHAT", what_, "What to show: 'entities'" )->required()->check( problemOfWhat );
   app.add_option( "PATH", pathText_,
                   "The entity's path, '/evpn/status/segmentStatus[Port-Channel1]'; without one, "
                   "the paths to begin with are listed" );
}

void Show::readWords() {
   scenario_.readWords();
   if ( !pathText_.empty() ) {
      path_ = pathOf( pathText_ );
   }
}

void Show::print( std::vector< Story::EntityShown > const & entities, std::ostream & out ) const {
   if ( scenario_.isJson() ) {
      Json const json = path_ ? Json{ { "path", entities.front().path },
                                      { "entity", jsonOf( entities.front().tree ) } }
                              : pathsJson( entities );
      out << Story::documentText( json );
      return;
   }
   for ( Story::EntityShown const & shown : entities ) {
      out << ( path_ ? Story::treeText( shown.path, shown.tree ) : Story::pathLine( shown ) );
   }
}

Story::ExitCode Show::perform( std::ostream & out ) {
   Scenario::Model const scenario = Steps::readScenario( scenario_.file() );
   std::ostringstream story;
   Story::HumanWriter writer( story, Story::Style( false ) );
   Shown shown;
   Story::Outcome outcome;
   ScenarioRun what{ scenario, scenario_.config(), {}, scenario_.turnLimit() };
   what.config.show = path_ ? Host::AgentConfig::Show( *path_ ) : Host::AgentConfig::Paths{};
   runScenario( what, { &writer, &shown }, outcome );
   if ( outcome.stopped() ) {
      std::cerr << story.str();
      return Story::ExitCode::Stopped;
   }
   if ( !outcome.badInput().empty() ) {
      return Story::ExitCode::BadInput;
   }
   if ( outcome.interrupted() ) {
      tellInterruption( outcome );
      return outcome.exitCode();
   }
   print( shown.entities(), out );
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
