#include <Scenario/Values.h>

#include <array>
#include <charconv>

#include <Scenario/Characters.h>

namespace Scenario {

namespace {

// The longest text that a problem shows whole.
constexpr std::size_t kShown = 40;

// YAML's tag for a value in quotes.
constexpr std::string_view kQuoted = "!";

void wrongKind( Reading & reading, Value const & value, std::string const & expected ) {
   reading.problem( value.line, value.name + " is " + std::string( kindOf( value.node ) ) + "; " +
                                   expected + " is expected" );
}

std::string withoutQuotes( Value const & value ) {
   return value.node.Tag() == kQuoted ? ", without quotes" : "";
}

// The line of an element of a list.
int lineOf( Reading const & reading, Value const & list, YAML::Node const & element ) {
   if ( !element.IsNull() ) {
      return element.Mark().line + 1;
   }
   bool const hasDashes = list.node.Style() == YAML::EmitterStyle::Block;
   return hasDashes ? reading.lineOfDash( element.Mark() ) : list.line;
}

// The words of YAML 1.2. There, "yes" and "on" are texts.
bool isYesOrNo( std::string_view text ) {
   constexpr std::array< std::string_view, 6 > words{ "true",  "True",  "TRUE",
                                                      "false", "False", "FALSE" };
   return std::find( words.begin(), words.end(), text ) != words.end();
}

}  // namespace

std::string inQuotes( std::string_view text ) {
   return '\'' + std::string( beginning( text, kShown ) ) + ( text.size() > kShown ? "...'" : "'" );
}

std::string pathInQuotes( std::string_view path ) {
   return '\'' + std::string( path ) + '\'';
}

std::vector< Value > mappingOf( Reading & reading, Value const & value ) {
   std::vector< Value > members;
   if ( !value.node.IsMap() ) {
      wrongKind( reading, value, "a mapping" );
      return members;
   }
   Seen< std::string > seen;
   for ( auto const & entry : value.node ) {
      std::string const key = entry.first.IsScalar() ? entry.first.Scalar() : "";
      int const line = reading.lineOf( entry.first.Mark() );
      if ( key.empty() ) {
         reading.problem( line, "a key in " + value.name + " is " +
                                   std::string( kindOf( entry.first ) ) +
                                   "; a word or a name is expected" );
      } else if ( isFirst( reading, seen, key, line ) ) {
         members.push_back( { entry.second, line, key } );
      }
   }
   return members;
}

std::vector< Value > listOf( Reading & reading, Value const & value ) {
   std::vector< Value > elements;
   if ( !value.node.IsSequence() ) {
      wrongKind( reading, value, "a list" );
      return elements;
   }
   for ( YAML::Node const & element : value.node ) {
      elements.push_back(
         { element, lineOf( reading, value, element ), "an element of " + value.name } );
   }
   return elements;
}

std::optional< std::string > stringOf( Reading & reading, Value const & value,
                                       std::string const & expected ) {
   if ( value.node.IsScalar() && !value.node.Scalar().empty() ) {
      return value.node.Scalar();
   }
   wrongKind( reading, value, expected );
   return std::nullopt;
}

std::optional< U32 > numberIn( std::string_view text ) {
   bool const isHexadecimal = text.starts_with( "0x" );
   std::string_view const digits = text.substr( isHexadecimal ? 2 : 0 );
   U32 number = 0;
   auto const [ end, error ] = std::from_chars( digits.data(), digits.data() + digits.size(),
                                                number, isHexadecimal ? 16 : 10 );
   // YAML's versions disagree on whether a leading zero means octal.
   bool const isAmbiguous = !isHexadecimal && digits.size() > 1 && digits.front() == '0';
   bool const isWhole = error == std::errc() && end == digits.data() + digits.size();
   return isWhole && !isAmbiguous ? std::optional( number ) : std::nullopt;
}

std::optional< U32 > numberIn( Value const & value ) {
   bool const isPlain = value.node.IsScalar() && value.node.Tag() != kQuoted;
   return isPlain ? numberIn( value.node.Scalar() ) : std::nullopt;
}

std::optional< U32 > numberOf( Reading & reading, Value const & value, U32 lowest, U32 highest,
                               std::string const & alternative ) {
   std::string const expected =
      "a whole number from " + std::to_string( lowest ) + " to " + std::to_string( highest );
   auto const text = stringOf( reading, value, expected );
   auto const number = numberIn( value );
   if ( !text || ( number && *number >= lowest && *number <= highest ) ) {
      return number;
   }
   reading.problem( value.line, value.name + " is " + inQuotes( *text ) + "; " + expected +
                                   " is expected" + withoutQuotes( value ) + alternative );
   return std::nullopt;
}

void noChoice( Reading & reading, Value const & value, WordList const & list ) {
   std::vector< std::string_view > const names = list.names();
   std::string_view const near = nearest( value.node.Scalar(), names );
   reading.problem( value.line,
                    value.name + " is " + inQuotes( value.node.Scalar() ) + "; " +
                       ( near.empty() ? listed( names ) + " is expected"
                                      : "did you mean '" + std::string( near ) + "'?" ) );
}

std::optional< bool > yesOrNoOf( Reading & reading, Value const & value ) {
   auto const text = stringOf( reading, value, "true or false" );
   bool const isPlain = value.node.Tag() != kQuoted;
   bool isYes = false;
   if ( text && isPlain && YAML::convert< bool >::decode( value.node, isYes ) &&
        isYesOrNo( *text ) ) {
      return isYes;
   }
   if ( text ) {
      reading.problem( value.line, value.name + " is " + inQuotes( *text ) +
                                      "; true or false is expected" + withoutQuotes( value ) );
   }
   return std::nullopt;
}

}  // namespace Scenario
