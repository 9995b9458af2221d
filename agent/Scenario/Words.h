// The words of a mapping, as a table.
//
// Every mapping of the language with a fixed set of words has one table: a row per word with the
// shape of its value and the function that reads it. The known words, the required words and the
// JSON Schema all follow from the table.
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
   std::string_view example;  // of a required word; empty: the word is optional
   std::string shape = {};    // of its value (Scenario/Shape.h); empty for a text of a choice

   bool isRequired() const { return !example.empty(); }
};

// The name of a mapping or a choice, and the parts of its JSON Schema that do not come from its
// words.
struct Place {
   std::string_view name;         // "tcam", as people know it
   std::string_view description;  // for people
   std::string_view more = "{}";  // further keywords of JSON Schema, as an object
};

// The words of a mapping, or the texts of a choice.
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

// One word that a mapping holds: its index in the table, and its value.
struct WordValue {
   std::size_t word;
   Value value;
};

// The known words of the mapping `value`, each once, in the order written.
std::vector< WordValue > wordValuesOf( Reading & reading, Value const & value,
                                       WordList const & list );

// A key of the mapping `value` is no word of the list. Checks of which words stand together are
// left out then: the key can stand for any of them.
bool hasStrangers( Value const & value, WordList const & list );

// The mapping or list `value` holds something; otherwise that is a problem.
bool isFilled( Reading & reading, Value const & value, WordList const & list );

// The same in the order of the list.
std::vector< WordValue > wordValuesInOrderOf( Reading & reading, Value const & value,
                                              WordList const & list );

// Notes in the reading's doubts whether values of the word hold a mistake.
class WordWatch {
 public:
   WordWatch( Reading & reading, Place const & place, WordName const & word );
   WordWatch( WordWatch const & ) = delete;
   WordWatch & operator=( WordWatch const & ) = delete;
   ~WordWatch();

 private:
   Reading & reading_;
   std::string_view place_;
   std::string_view word_;
   std::size_t before_;
};

template< typename Target >
void readWords( Reading & reading, std::vector< WordValue > const & entries,
                Table< Target > const & table, Target & target ) {
   for ( WordValue const & entry : entries ) {
      Word< Target > const & word = table.words[ entry.word ];
      WordWatch const watch( reading, table.place, word.name );
      word.read( reading, entry.value, target );
   }
}

// Reads the words in the order of the table, so a function finds the results of the rows before its
// own.
template< typename Target >
void readMapping( Reading & reading, Value const & value, Table< Target > const & table,
                  Target & target ) {
   readWords( reading, wordValuesInOrderOf( reading, value, table.list() ), table, target );
}

// Reads the words in the order written. There must be one at least.
template< typename Target >
void readAsWritten( Reading & reading, Value const & value, Table< Target > const & table,
                    Target & target ) {
   WordList const list = table.list();
   if ( isFilled( reading, value, list ) ) {
      readWords( reading, wordValuesOf( reading, value, list ), table, target );
   }
}

}  // namespace Scenario
