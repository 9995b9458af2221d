// Reads the values of scenarios: members of mappings, elements of lists, texts, numbers, choices.
//
// A problem with a value names it: "level is 'x'; a whole number from 0 to 9 is expected".
#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <Frames/MacAddress.h>
#include <Pelk/IpGenAddr.h>
#include <Quelm/Error.h>
#include <Quelm/Text.h>
#include <Scenario/Reading.h>
#include <Scenario/Words.h>

namespace Scenario {

// `text` in single quotes, cut short if it is long; a path is never cut.
std::string inQuotes( std::string_view text );
std::string pathInQuotes( std::string_view path );

// The members of a mapping under their keys, in the order written; of a repeated key the first.
// Anything but a mapping is a problem.
std::vector< Value > mappingOf( Reading & reading, Value const & value );
// The elements of a list. Anything but a list is a problem.
std::vector< Value > listOf( Reading & reading, Value const & value );

// A text that is not empty; a number or a boolean counts as one. `expected` describes it in
// problems.
std::optional< std::string > stringOf( Reading & reading, Value const & value,
                                       std::string const & expected = "text" );

// A whole number in decimal, or in hexadecimal after 0x. `alternative` names another value that the
// caller accepts, for the problem's text: ", or none".
std::optional< U32 > numberOf( Reading & reading, Value const & value, U32 lowest, U32 highest,
                               std::string const & alternative = "" );
// The number in a text, or in a value without quotes; nothing for any other text.
std::optional< U32 > numberIn( std::string_view text );
std::optional< U32 > numberIn( Value const & value );

// `text` in the text form of T; the error of T says what is wrong with it.
template< typename T >
std::optional< T > parsed( Reading & reading, std::string const & text, int line ) {
   try {
      return Quelm::fromText< T >( text );
   } catch ( Quelm::TextError const & error ) {
      std::string_view const reason = error.what();
      // A reason that begins with this word does not name the text.
      reading.problem( line, ( reason.starts_with( "expected" ) ? inQuotes( text ) + ": " : "" ) +
                                std::string( reason ) );
      return std::nullopt;
   }
}

// A value in the text form of T, described in words.
template< typename T > inline constexpr std::string_view kExample = "text";
template<>
inline constexpr std::string_view kExample< Pelk::IpGenAddr > = "an IP address, as in 10.0.0.2,";
template<>
inline constexpr std::string_view kExample< Chip::MacAddress > =
   "a MAC address, as in 00:00:5e:00:53:01,";

// A value in the text form of T.
template< typename T > std::optional< T > valueOf( Reading & reading, Value const & value ) {
   auto const text = stringOf( reading, value, std::string( kExample< T > ) );
   return text ? parsed< T >( reading, *text, value.line ) : std::nullopt;
}

// The line of each thing by its value, for things that must differ from each other.
template< typename T > using Seen = std::map< T, int >;

// `thing` is new in `seen`; otherwise that is a problem.
template< typename T >
bool isFirst( Reading & reading, Seen< T > & seen, T const & thing, int line ) {
   auto const [ before, isNew ] = seen.try_emplace( thing, line );
   if ( !isNew ) {
      reading.objection( line, Quelm::textOf( thing ) + " is given twice, first in line " +
                                  std::to_string( before->second ) + "; keep one of them" );
   }
   return isNew;
}

// A key of type T, and the value under it.
template< typename T > struct Keyed {
   T key;
   Value value;
};

// The members of a mapping, each key once; `read` turns a key's text and its line into a T, or into
// nothing.
template< typename Read > auto keyedOf( Reading & reading, Value const & value, Read read ) {
   using T = typename std::invoke_result_t< Read, Reading &, std::string const &, int >::value_type;
   std::vector< Keyed< T > > result;
   Seen< T > seen;
   for ( Value const & member : mappingOf( reading, value ) ) {
      auto const key = read( reading, member.name, member.line );
      if ( key && isFirst( reading, seen, *key, member.line ) ) {
         result.push_back( { *key, member } );
      }
   }
   return result;
}

// The same, for keys that other parts of the scenario refer to: notes whether one of them cannot be
// read (Scenario/Doubts.h), under the name `names`.
template< typename Read >
auto namedOf( Reading & reading, Value const & value, Read read, char const * names ) {
   std::size_t const before = reading.unreadSoFar();
   auto result = keyedOf( reading, value, read );
   if ( reading.unreadSoFar() != before ) {
      reading.doubts().isLost( names );
   }
   return result;
}

// A thing of type T, and its line.
template< typename T > struct Placed {
   T thing;
   int line;
};

// The elements of a list, each once; `read` as above.
template< typename Read > auto distinctOf( Reading & reading, Value const & value, Read read ) {
   using T = typename std::invoke_result_t< Read, Reading &, std::string const &, int >::value_type;
   std::vector< Placed< T > > result;
   Seen< T > seen;
   for ( Value const & element : listOf( reading, value ) ) {
      auto const text = stringOf( reading, element );
      auto const thing = text ? read( reading, *text, element.line ) : std::nullopt;
      if ( thing && isFirst( reading, seen, *thing, element.line ) ) {
         result.push_back( { *thing, element.line } );
      }
   }
   return result;
}

// A value and the text that stands for it in a scenario.
template< typename T > struct Choice {
   std::string_view name;
   T value;
};

void noChoice( Reading & reading, Value const & value, WordList const & list );

template< typename T > struct Choices {
   Place place;
   std::vector< Choice< T > > all;

   WordList list() const {
      WordList result{ place, {}, true };
      for ( Choice< T > const & choice : all ) {
         result.words.push_back( { choice.name, {} } );
      }
      return result;
   }

   // The name of a value among the choices.
   std::string_view nameOf( T value ) const {
      return std::find_if( all.begin(), all.end(),
                           [ value ]( Choice< T > const & one ) { return one.value == value; } )
         ->name;
   }
};

// The value with this name.
template< typename T >
std::optional< T > choiceOf( Reading & reading, Value const & value,
                             Choices< T > const & choices ) {
   auto const text = stringOf( reading, value, listed( choices.list().names() ) );
   if ( !text ) {
      return std::nullopt;
   }
   for ( Choice< T > const & choice : choices.all ) {
      if ( choice.name == *text ) {
         return choice.value;
      }
   }
   noChoice( reading, value, choices.list() );
   return std::nullopt;
}

// `true` or `false`.
std::optional< bool > yesOrNoOf( Reading & reading, Value const & value );

// Rows of tables: a member that is a text, or a number from `lowest` to `highest`.
template< typename T, std::string T::*member >
void readText( Reading & reading, Value const & value, T & target ) {
   target.*member = stringOf( reading, value ).value_or( "" );
}

template< typename T, std::optional< U32 > T::*member, U32 lowest = 0, U32 highest = ~U32{ 0 } >
void readNumber( Reading & reading, Value const & value, T & target ) {
   target.*member = numberOf( reading, value, lowest, highest );
}

}  // namespace Scenario
