#include <CommandLine/Comparison.h>

#include <map>

#include <fmt/format.h>

#include <Story/JsonForms.h>

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

Node difference( std::string const & item, std::string const * before, std::string const * after ) {
   std::string const text = !before  ? fmt::format( "+ {}: {}", item, *after )
                            : !after ? fmt::format( "- {}: {}", item, *before )
                                     : fmt::format( "~ {}: {} -> {}", item, *before, *after );
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

void addDifferences( Values const & before, Values const & after, Node & kind ) {
   Values all = before;
   all.insert( after.begin(), after.end() );
   for ( auto const & [ item, value ] : all ) {
      auto const * const was = valueOf( before, item );
      auto const * const is = valueOf( after, item );
      if ( !was || !is || *was != *is ) {
         kind.add( difference( item, was, is ) );
      }
   }
}

}  // namespace

Story::ExitCode stateAfter( ScenarioRun what, Story::Table & state ) {
   what.config.show = Questions::find( "state" );
   TableTaken taken( state );
   return runForAnswer( what, taken );
}

Node differencesBetween( Story::Table const & before, Story::Table const & after ) {
   auto first = byKind( before );
   auto second = byKind( after );
   Node differences{ "differences", "differences" };
   for ( auto const & [ name, heading ] :
         { std::pair{ "published", "published state" }, std::pair{ "rule", "rules" },
           std::pair{ "record", "records of the plug-in" } } ) {
      Node kind{ name, heading };
      addDifferences( first[ name ], second[ name ], kind );
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
                   : Story::treeText( differences ) );
   return differences.children.empty() ? Story::ExitCode::Held : Story::ExitCode::ExpectationFailed;
}

}  // namespace CommandLine
