#include <CommandLine/Comparison.h>

#include <algorithm>
#include <array>
#include <map>

#include <fmt/format.h>

#include <CommandLine/Terminal.h>
#include <CommandLine/Words.h>
#include <Story/JsonForms.h>
#include <Text/Words.h>
#include <Text/Wrapping.h>

#include <unistd.h>

namespace CommandLine {

namespace {

using Story::Cell;
using Story::Node;

class TableTaken final : public Story::Observer {
 public:
   explicit TableTaken( Story::Table & table ) : table_( table ) {}

   void onEvent( Story::Event const & event ) override {
      if ( auto const * const shown = std::get_if< Story::TableShown >( &event ) ) {
         table_ = shown->table;
      }
   }

 private:
   Story::Table & table_;
};

// The rows of one kind: values by item.
using Values = std::map< std::string, std::string >;

std::map< std::string, Values > byKind( Story::Table const & state ) {
   std::map< std::string, Values > kinds;
   for ( auto const & row : state.rows ) {
      kinds[ row[ 0 ].words() ][ row[ 1 ].words() ] = row[ 2 ].words();
   }
   return kinds;
}

struct Part {
   std::string_view word;  // of --only
   char const * kind;      // of the rows
   char const * heading;
};
constexpr std::array< Part, 3 > kParts{ Part{ "published", "published", "published state" },
                                        Part{ "rules", "rule", "rules" },
                                        Part{ "records", "record", "records of the plug-in" } };

std::vector< std::string_view > partWords() {
   std::vector< std::string_view > words;
   for ( Part const & part : kParts ) {
      words.push_back( part.word );
   }
   return words;
}

std::string problemOfPart( std::string const & text ) {
   auto const known = partWords();
   bool const isKnown = std::find( known.begin(), known.end(), text ) != known.end();
   return isKnown ? "" : "'" + text + "' is no part of a state; give " + Text::listed( known );
}

// The value behind an item; a member of a set has none but being there.
std::string withValue( std::string const & item, std::string const & value ) {
   return value == "there" ? item : item + ": " + value;
}

// `folder` is the beginning of the item that the heading tells.
Node difference( std::string const & item, std::size_t folder, std::string const * before,
                 std::string const * after ) {
   std::string const name = item.substr( folder );
   std::string const text = !before  ? "+ " + withValue( name, *after )
                            : !after ? "- " + withValue( name, *before )
                                     : fmt::format( "~ {}: {} -> {}", name, *before, *after );
   return { "difference",
            text,
            { { "item", item },
              { "before", before ? Cell( *before ) : Cell() },
              { "after", after ? Cell( *after ) : Cell() } } };
}

std::string const * valueOf( Values const & values, std::string const & item ) {
   auto const found = values.find( item );
   return found == values.end() ? nullptr : &found->second;
}

// The length of the folder in which all the items are, with its slash; 0 without one.
std::size_t commonFolder( std::vector< std::string > const & items ) {
   if ( items.size() < 2 ) {
      return 0;
   }
   // In sorted items, the first and the last have the least in common.
   auto const & [ first, last ] = std::pair( items.front(), items.back() );
   auto const differ = std::mismatch( first.begin(), first.end(), last.begin(), last.end() ).first;
   std::string const common = std::string( first.begin(), differ ).substr( 0, first.find( '[' ) );
   std::size_t const slash = common.starts_with( '/' ) ? common.rfind( '/' ) : 0;
   return slash == 0 ? 0 : slash + 1;
}

void addDifferences( Values const & before, Values const & after, Node & kind ) {
   Values all = before;
   all.insert( after.begin(), after.end() );
   std::vector< std::string > items;
   for ( auto const & [ item, value ] : all ) {
      auto const * const was = valueOf( before, item );
      auto const * const is = valueOf( after, item );
      if ( !was || !is || *was != *is ) {
         items.push_back( item );
      }
   }
   std::size_t const folder = commonFolder( items );
   if ( folder != 0 ) {
      kind.text += ", below " + items.front().substr( 0, folder );
   }
   for ( std::string const & item : items ) {
      kind.add( difference( item, folder, valueOf( before, item ), valueOf( after, item ) ) );
   }
}

}  // namespace

Story::ExitCode stateAfter( ScenarioRun what, Story::Table & state ) {
   what.config.show = Questions::find( "state" );
   TableTaken taken( state );
   return runForAnswer( what, taken );
}

std::optional< Story::Table > stateIfAny( ScenarioRun what, int & signal ) {
   what.config.show = Questions::find( "state" );
   Story::Table state;
   TableTaken taken( state );
   Story::Outcome outcome;
   Story::Observers both( { &taken, &outcome } );
   runScenario( what, both );
   signal = outcome.interrupted() ? outcome.interrupted()->signal : 0;
   return outcome.exitCodeOfAnswer() == Story::ExitCode::Held ? std::optional( std::move( state ) )
                                                              : std::nullopt;
}

Word declareOnly( CLI::App & app, Parts & only ) {
   return value( app, "--only", only,
                 "Compare this part of the state alone, " + Text::listed( partWords() ) +
                    "; can be given several times" )
      .type( "PART" )
      .repeatable()
      .check( problemOfPart );
}

Node differencesBetween( Story::Table const & before, Story::Table const & after,
                         Parts const & only ) {
   auto first = byKind( before );
   auto second = byKind( after );
   Node differences{ "differences", "differences" };
   for ( Part const & part : kParts ) {
      if ( !only.empty() && std::find( only.begin(), only.end(), part.word ) == only.end() ) {
         continue;
      }
      Node kind{ part.kind, part.heading };
      addDifferences( first[ part.kind ], second[ part.kind ], kind );
      if ( !kind.children.empty() ) {
         differences.add( std::move( kind ) );
      }
   }
   if ( differences.children.empty() ) {
      differences.text = "no differences";
   }
   return differences;
}

Story::ExitCode print( Node const & differences, bool asJson, std::ostream & out ) {
   out << ( asJson ? Story::documentText( jsonOf( differences ) )
                   : Text::narrowed( treeText( differences ), widthOf( STDOUT_FILENO ) ) );
   return differences.children.empty() ? Story::ExitCode::Held : Story::ExitCode::ExpectationFailed;
}

Story::ExitCode printChange( ScenarioRun const & before, ScenarioRun const & after,
                             DifferencesShown const & how, std::ostream & out ) {
   Story::Table first;
   Story::Table second;
   auto code = stateAfter( before, first );
   if ( code == Story::ExitCode::Held ) {
      code = stateAfter( after, second );
   }
   if ( code == Story::ExitCode::Held ) {
      print( differencesBetween( first, second, how.only ), how.asJson, out );
   }
   return code;
}

}  // namespace CommandLine
