// All questions about the switch that are answered by a table.
//
// A question is one function and a row here: its name, its columns, and how the rows come about.
// `vornal show` takes the name; a filter of `show` names a column.
#pragma once

#include <string_view>
#include <vector>

#include <Questions/Context.h>
#include <Story/Table.h>

namespace Questions {

using Rows = std::vector< std::vector< Story::Cell > >;

struct Row {
   std::string_view name;
   std::string_view purpose;
   std::vector< std::string > columns;
   Rows ( *rows )( Context const & context );
};

std::vector< Row > const & table();
// The row, or nullptr.
Row const * find( std::string_view name );

Story::Table answer( Row const & row, Context const & context );

// --- The rows of each, sorted

// Rules.cpp
Rows rules( Context const & context );
// Published.cpp
Rows segments( Context const & context );
Rows vteps( Context const & context );
Rows ports( Context const & context );
Rows classIds( Context const & context );
// Chip.cpp
Rows tcam( Context const & context );
Rows macs( Context const & context );
Rows counters( Context const & context );
Rows log( Context const & context );
// State.cpp
Rows state( Context const & context );

}  // namespace Questions
