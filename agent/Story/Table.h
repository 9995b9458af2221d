// A table: the answer to a question about the switch.
//
// One form serves the pipe between the processes, the JSON document and the text for people. A
// column's name is its name in JSON, "virtualPort"; people see the heading "VIRTUAL PORT". A column
// of the name "because" holds a sentence: for people it is a line of its own below the row.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <Quelm/Integers.h>

namespace Story {

// Nothing, a number, a text, or a list of texts.
struct Cell {
   using Value = std::variant< std::monostate, U64, std::string, std::vector< std::string > >;

   Cell() = default;
   Cell( std::string text ) : value( std::move( text ) ) {}
   Cell( char const * text ) : value( std::string( text ) ) {}
   Cell( U64 number ) : value( number ) {}
   Cell( std::vector< std::string > texts ) : value( std::move( texts ) ) {}
   template< typename T >
   Cell( std::optional< T > const & perhaps ) : Cell( perhaps ? Cell( *perhaps ) : Cell() ) {}

   // Whether it is that text or number, or holds it.
   bool has( std::string const & text ) const;
   // In one line; "-" for nothing.
   std::string words() const;

   Value value;

   friend bool operator==( Cell const &, Cell const & ) = default;
};

struct Table {
   std::string name;  // "rules"
   std::vector< std::string > columns;
   std::vector< std::vector< Cell > > rows;  // as long as `columns`

   static void fields( auto & table, auto && field ) {
      field( "name", table.name );
      field( "columns", table.columns );
      field( "rows", table.rows );
   }

   friend bool operator==( Table const &, Table const & ) = default;
};

// --- For people

// The table in columns, with a heading and a line end behind each line. Texts that do not fit into
// `width` columns of the terminal go on in the next line of their column.
std::string tableText( Table const & table, std::size_t width );

}  // namespace Story
