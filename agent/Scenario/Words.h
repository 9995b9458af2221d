// The words of a mapping, as a table.
//
// Every mapping of the language with a fixed set of words has one table: a row per word with the
// shape of its value and the function that reads it. The table is all there is; what is known, what
// is required, what the JSON Schema says follows from it.
//
//    Table< Tcam > const table{ { "tcam", "The size of the groups." },
//                               { { { "ingress", "", Shape::of( "entries" ) }, readIngress },
//                                 ... } };
//    readMapping( reading, value, table, tcam );
//
// Unknown, repeated and missing words are problems; the well-formed rest is read all the same.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <Scenario/Reading.h>

namespace Scenario {

struct WordName {
   std::string_view name;
   std::string_view example;  // of a word that must be there; empty: it may be left out
   std::string shape = {};    // of its value (Scenario/Shape.h); empty for a text to choose

   bool isRequired() const { return !example.empty(); }
};

// What a mapping or a choice is known by, and what the JSON Schema says of it beside its words.
struct Place {
   std::string_view name;         // "tcam", as people know it
   std::string_view description;  // for people
   std::string_view more = "{}";  // further keywords of JSON Schema, as an object
};

// A mapping's words, or the texts that a value is chosen from.
struct WordList {
   Place place;
   std::vector< WordName > words;
   bool isChoice = false;

   std::vector< std::string_view > names() const;
};

template< typename Target > struct Word {
   WordName name;
   void ( *read )( Reading &, Value const &, Target & );
};

template< typename Target > struct Table {
   Place place;
   std::vector< Word< Target > > words;

   WordList list() const {
      WordList result{ place, {} };
      for ( Word< Target > const & word : words ) {
         result.words.push_back( word.name );
      }
      return result;
   }
};

// The words of several lists in one, for a table that is written in parts.
template< typename Target >
std::vector< Word< Target > > joined( std::vector< std::vector< Word< Target > > > const & lists ) {
   std::vector< Word< Target > > words;
   for ( auto const & list : lists ) {
      words.insert( words.end(), list.begin(), list.end() );
   }
   return words;
}

// One word of a mapping that was read: its index in the table, and its value.
struct Entry {
   std::size_t word;
   Value value;
};

// The known words of the mapping `value`, each once, in the order written.
std::vector< Entry > entriesOf( Reading & reading, Value const & value, WordList const & list );

// Whether the mapping or list `value` holds anything; otherwise that is a problem.
bool isFilled( Reading & reading, Value const & value, WordList const & list );

// The same in the order of the list.
std::vector< Entry > entriesInOrderOf( Reading & reading, Value const & value,
                                       WordList const & list );

// Reads the words in the order of the table, so that a function finds what the rows before its own
// have read.
template< typename Target >
void readMapping( Reading & reading, Value const & value, Table< Target > const & table,
                  Target & target ) {
   for ( Entry const & entry : entriesInOrderOf( reading, value, table.list() ) ) {
      table.words[ entry.word ].read( reading, entry.value, target );
   }
}

// Reads the words in the order in which they are written, of which there must be one at least.
template< typename Target >
void readAsWritten( Reading & reading, Value const & value, Table< Target > const & table,
                    Target & target ) {
   WordList const list = table.list();
   if ( isFilled( reading, value, list ) ) {
      for ( Entry const & entry : entriesOf( reading, value, list ) ) {
         table.words[ entry.word ].read( reading, entry.value, target );
      }
   }
}

}  // namespace Scenario
