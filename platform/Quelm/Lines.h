// How a class declared one attribute per line becomes a table.
//
// Each attribute line of a class adds one overload of a static function that takes Line< N >, with
// N the line of the source file. Counting the overloads between the class's first attribute line
// and any other gives every line its position in the table: at compile time, from the declaration
// alone, the same in every translation unit.
//
// Two rules follow: one attribute per line, and a table no longer than kMostLines lines.
#pragma once

#include <type_traits>
#include <utility>

namespace Quelm {

template< int line > struct Line {};

// Overload that every table begins with; hides the tables of base classes.
struct NoLine {};

constexpr int kMostLines = 160;

// True when `Table` declares an attribute on `line`. (Version 14 of clang-format takes the braces
// for a body.)
// clang-format off
template< typename Table, int line >
concept HasLine = requires { Table::quelmLine( Line< line >{} ); };
// clang-format on

// The number of attributes that `Table` declares on the lines first to last.
template< typename Table, int first, int last >
constexpr int linesUpTo = linesUpTo< Table, first, last - 1 > + ( HasLine< Table, last > ? 1 : 0 );
template< typename Table, int first > constexpr int linesUpTo< Table, first, first > = 0;

// Calls `visit( Line< N >{} )` for every line, attribute or not, that a table beginning at `first`
// may have; `visit` picks those it wants.
template< int first, typename Visit > void forEachLine( Visit && visit ) {
   auto const visitAll = [ & ]< int... n >( std::integer_sequence< int, n... > ) {
      ( visit( Line< first + n >{} ), ... );
   };
   visitAll( std::make_integer_sequence< int, kMostLines >{} );
}

}  // namespace Quelm
