#include <CommandLine/Show.h>

#include <algorithm>

#include <fmt/format.h>

#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Story/EntityText.h>
#include <Story/JsonForms.h>
#include <Text/Words.h>

#include <unistd.h>

namespace CommandLine {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view kEntities = "entities";

class Shown final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      std::visit( Story::Overloaded{
                     [ & ]( Story::EntityShown const & shown ) { entities_.push_back( shown ); },
                     [ & ]( Story::TableShown const & shown ) { table_ = shown.table; },
                     []( auto const & ) {} },
                  event );
   }

   std::vector< Story::EntityShown > const & entities() const { return entities_; }
   Story::Table const & table() const { return table_; }

 private:
   std::vector< Story::EntityShown > entities_;
   Story::Table table_;
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
      refuseValue( "PATH", "'" + text +
                              "' is not the path of an entity such as "
                              "'/evpn/status': " +
                              error.what() );
   }
}

std::string problemOfWhat( std::string const & text ) {
   auto const known = Show::subjects();
   if ( std::find( known.begin(), known.end(), text ) != known.end() ) {
      return "";
   }
   std::string_view const near = Text::nearest( text, known );
   return "'" + text + "' cannot be shown; " +
          ( near.empty() ? "give " + Text::listed( known )
                         : "did you mean '" + std::string( near ) + "'?" );
}

std::string purposeOfWhat() {
   std::string text = "What to show: " + Text::listed( Show::subjects() );
   for ( Questions::Row const & row : Questions::table() ) {
      text += "\n" + std::string( row.name ) + ": " + std::string( row.purpose );
   }
   return text + "\nentities: those of the state database, the agent and the plug-in";
}

}  // namespace

std::vector< std::string_view > Show::subjects() {
   std::vector< std::string_view > names;
   for ( Questions::Row const & row : Questions::table() ) {
      names.push_back( row.name );
   }
   names.push_back( kEntities );
   return names;
}

void Show::declare( CLI::App & app ) {
   scenario_.declare( app );
   value( app, "WHAT", what_, purposeOfWhat() ).required().check( problemOfWhat );
   value( app, "PATH", pathText_,
          "Of 'entities': the entity's path, '/evpn/status/segmentStatus[Port-Channel1]'; "
          "without one, the paths to begin with are listed" )
      .check( problemOfName );
   after_.declare(
      app,
      "Show the switch after this step, 0 for start-up, or at this time of a record, as "
      "in 2.5s; after the last one if none is given" );
   filters_ = {
      { "vtep", "" }, { "unit", "" }, { "segment", "" }, { "interface", "" }, { "entry", "" }
   };
   for ( Filter & filter : filters_ ) {
      value( app, "--" + filter.column, filter.text, "Show only the rows of this " + filter.column )
         .check( problemOfName );
   }
}

std::vector< std::string_view > Show::choicesOf( std::string_view word ) const {
   return word == "WHAT" ? subjects() : std::vector< std::string_view >();
}

void Show::readWords() {
   scenario_.readWords();
   after_.readWords();
   question_ = Questions::find( what_ );
   checkFilters();
   if ( pathText_.empty() ) {
      return;
   }
   if ( question_ ) {
      refuseValue( "PATH", "a path is of 'entities'; leave it out, or show those" );
   }
   path_ = pathOf( pathText_ );
}

void Show::checkFilters() const {
   for ( Filter const & filter : filters_ ) {
      bool const hasColumn =
         question_ && std::find( question_->columns.begin(), question_->columns.end(),
                                 filter.column ) != question_->columns.end();
      if ( !filter.text.empty() && !hasColumn ) {
         refuseValue( "--" + filter.column,
                      "'" + what_ + "' has no column " + filter.column + "; leave it out" );
      }
   }
}

Host::AgentConfig::Show Show::subject() const {
   if ( question_ ) {
      return question_;
   }
   return path_ ? Host::AgentConfig::Show( *path_ ) : Host::AgentConfig::Paths{};
}

void Show::print( Story::Table table, std::ostream & out ) const {
   std::size_t const all = table.rows.size();
   std::string asked;
   for ( Filter const & filter : filters_ ) {
      auto const column = std::find( table.columns.begin(), table.columns.end(), filter.column );
      auto const place = static_cast< std::size_t >( column - table.columns.begin() );
      std::erase_if( table.rows, [ & ]( auto const & row ) {
         return !filter.text.empty() && !row.at( place ).has( filter.text );
      } );
      asked += filter.text.empty() ? "" : " with " + filter.column + ' ' + filter.text;
   }
   if ( scenario_.isJson() ) {
      out << Story::documentText( jsonOf( table ) );
   } else if ( table.rows.empty() && all != 0 ) {
      out << fmt::format( "no {}{}; {} in all\n", table.name, asked, all );
   } else {
      out << Story::tableText( table, widthOf( STDOUT_FILENO ) );
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
   Scenario::Model const scenario = scenario_.read();
   ScenarioRun what{ scenario, scenario_.config(), {}, scenario_.turnLimit(), scenario_.record() };
   what.config.show = subject();
   after_.limit( what.config, scenario, scenario_.record() );
   Shown shown;
   auto const code = runForAnswer( what, shown );
   if ( code != Story::ExitCode::Held ) {
      return code;
   }
   if ( question_ ) {
      print( shown.table(), out );
   } else {
      print( shown.entities(), out );
   }
   return code;
}

}  // namespace CommandLine
