#include <Scenario/Words.h>

#include <algorithm>
#include <iterator>

#include <Scenario/Values.h>

namespace Scenario {

namespace {

constexpr std::size_t kUnknown = static_cast< std::size_t >( -1 );

// Its name for people.
std::string nameOf( WordList const & list ) {
   return list.place.name == "derived-scenario" ? "a scenario that is based on another"
                                                : std::string( list.place.name );
}

std::size_t indexOf( Reading & reading, Value const & member, WordList const & list ) {
   for ( std::size_t n = 0; n < list.words.size(); ++n ) {
      if ( list.words[ n ].name == member.name ) {
         return n;
      }
   }
   std::string_view const near = nearest( member.name, list.names() );
   reading.problem( member.line,
                    "unknown word " + inQuotes( member.name ) + " in " + nameOf( list ) + "; " +
                       ( near.empty() ? knownOnes( list.names() )
                                      : "did you mean '" + std::string( near ) + "'?" ) );
   return kUnknown;
}

void checkRequired( Reading & reading, Value const & value,
                    std::vector< WordValue > const & entries, WordList const & list ) {
   for ( std::size_t n = 0; n < list.words.size(); ++n ) {
      bool const isThere =
         std::any_of( entries.begin(), entries.end(),
                      [ n ]( WordValue const & entry ) { return entry.word == n; } );
      WordName const & word = list.words[ n ];
      if ( word.isRequired() && !isThere ) {
         reading.problem( value.line, "'" + std::string( word.name ) + "' is missing in " +
                                         value.name + "; give it, as in '" +
                                         std::string( word.example ) + "'" );
      }
   }
}

}  // namespace

std::vector< std::string_view > WordList::names() const {
   std::vector< std::string_view > result;
   for ( WordName const & word : words ) {
      result.push_back( word.name );
   }
   return result;
}

bool isFilled( Reading & reading, Value const & value, WordList const & list ) {
   bool const isEmpty = !value.node.IsScalar() && value.node.size() == 0;
   if ( isEmpty ) {
      reading.problem( value.line, value.name + " is empty; give one at least of " +
                                      listed( list.names(), "and" ) );
   }
   return !isEmpty;
}

std::vector< WordValue > wordValuesOf( Reading & reading, Value const & value,
                                       WordList const & list ) {
   std::vector< WordValue > entries;
   if ( !value.node.IsMap() ) {
      reading.problem( value.line, value.name + " is " + std::string( kindOf( value.node ) ) +
                                      "; a mapping is expected, of " +
                                      listed( list.names(), "and" ) );
      return entries;
   }
   for ( Value const & member : mappingOf( reading, value ) ) {
      std::size_t const word = indexOf( reading, member, list );
      if ( word != kUnknown ) {
         entries.push_back( { word, member } );
      }
   }
   checkRequired( reading, value, entries, list );
   return entries;
}

std::vector< WordValue > wordValuesInOrderOf( Reading & reading, Value const & value,
                                              WordList const & list ) {
   std::vector< WordValue > const entries = wordValuesOf( reading, value, list );
   std::vector< WordValue > sorted;
   for ( std::size_t word = 0; word < list.words.size(); ++word ) {
      std::copy_if( entries.begin(), entries.end(), std::back_inserter( sorted ),
                    [ word ]( WordValue const & entry ) { return entry.word == word; } );
   }
   return sorted;
}

}  // namespace Scenario
