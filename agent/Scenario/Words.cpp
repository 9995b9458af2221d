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

std::string partOf( std::string_view place, std::string_view word ) {
   return std::string( place ) + '/' + std::string( word );
}

// The word is not there: neither its value nor the mapping that it may hold.
void isLost( Reading & reading, WordList const & list, std::string_view word ) {
   reading.doubts().isLost( partOf( list.place.name, word ) );
   reading.doubts().isLost( std::string( word ) );
}

// The words of the list that no member has.
std::vector< std::string_view > lackingIn( std::vector< Value > const & members,
                                           WordList const & list ) {
   std::vector< std::string_view > lacking = list.names();
   std::erase_if( lacking, [ & ]( std::string_view word ) {
      return std::any_of( members.begin(), members.end(),
                          [ word ]( Value const & member ) { return member.name == word; } );
   } );
   return lacking;
}

// An unknown word that is like a known one hides that one alone. Any other can stand for each known
// word that the mapping lacks.
void refuse( Reading & reading, Value const & member,
             std::vector< std::string_view > const & lacking, WordList const & list ) {
   std::string_view const near = nearest( member.name, list.names() );
   reading.problem( member.line,
                    "unknown word " + inQuotes( member.name ) + " in " + nameOf( list ) + "; " +
                       ( near.empty() ? knownOnes( list.names() )
                                      : "did you mean '" + std::string( near ) + "'?" ) );
   for ( std::string_view const word :
         near.empty() ? lacking : std::vector< std::string_view >{ near } ) {
      isLost( reading, list, word );
   }
}

std::size_t indexOf( Reading & reading, Value const & member,
                     std::vector< std::string_view > const & lacking, WordList const & list ) {
   for ( std::size_t n = 0; n < list.words.size(); ++n ) {
      if ( list.words[ n ].name == member.name ) {
         return n;
      }
   }
   refuse( reading, member, lacking, list );
   return kUnknown;
}

// A key of the mapping is the word with a typing mistake.
bool isMeant( Value const & value, std::string_view word, WordList const & list ) {
   auto const names = list.names();
   return std::any_of( value.node.begin(), value.node.end(), [ & ]( auto const & entry ) {
      std::string const key = entry.first.IsScalar() ? entry.first.Scalar() : "";
      bool const isKnown = std::find( names.begin(), names.end(), key ) != names.end();
      return !isKnown && nearest( key, names ) == word;
   } );
}

// A word that is there with a typing mistake has been reported.
void checkRequired( Reading & reading, Value const & value,
                    std::vector< WordValue > const & entries, WordList const & list ) {
   for ( std::size_t n = 0; n < list.words.size(); ++n ) {
      bool const isThere =
         std::any_of( entries.begin(), entries.end(),
                      [ n ]( WordValue const & entry ) { return entry.word == n; } );
      WordName const & word = list.words[ n ];
      if ( word.isRequired() && !isThere && !isMeant( value, word.name, list ) ) {
         reading.problem( value.line, "'" + std::string( word.name ) + "' is missing in " +
                                         value.name + "; give it, as in '" +
                                         std::string( word.example ) + "'" );
         isLost( reading, list, word.name );
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

bool hasStrangers( Value const & value, WordList const & list ) {
   return value.node.IsMap() &&
          std::any_of( value.node.begin(), value.node.end(), [ & ]( auto const & entry ) {
             std::string const key = entry.first.IsScalar() ? entry.first.Scalar() : "";
             auto const names = list.names();
             return std::find( names.begin(), names.end(), key ) == names.end();
          } );
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
      reading.doubts().isLost( std::string( list.place.name ) );
      return entries;
   }
   std::size_t const before = reading.problemsSoFar();
   std::vector< Value > const members = mappingOf( reading, value );
   if ( reading.problemsSoFar() != before ) {
      reading.doubts().isLost( std::string( list.place.name ) );
   }
   std::vector< std::string_view > const lacking = lackingIn( members, list );
   for ( Value const & member : members ) {
      std::size_t const word = indexOf( reading, member, lacking, list );
      if ( word != kUnknown ) {
         entries.push_back( { word, member } );
      }
   }
   checkRequired( reading, value, entries, list );
   return entries;
}

WordWatch::WordWatch( Reading & reading, Place const & place, WordName const & word )
      : reading_( reading ),
        place_( place.name ),
        word_( word.name ),
        before_( reading.problemsSoFar() ) {}

WordWatch::~WordWatch() {
   if ( reading_.problemsSoFar() != before_ ) {
      reading_.doubts().isFlawed( partOf( place_, word_ ) );
   }
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
