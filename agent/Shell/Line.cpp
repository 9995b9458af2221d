#include <Shell/Line.h>

#include <algorithm>

#include <Story/InputError.h>
#include <Text/Words.h>

namespace Shell {

namespace {

using Text::isIn;

constexpr std::string_view kBlanks = " \t\n";

// A quote within a word is an apostrophe.
bool beginsSomething( std::string_view text, std::size_t at ) {
   return at == 0 || isIn( text[ at - 1 ], " \t\n[{,:" );
}

// The end of the quoted text that begins at `at`; the end of the text when it is not closed.
std::size_t behindQuote( std::string_view text, std::size_t at ) {
   std::size_t const close = text.find( text[ at ], at + 1 );
   return close == std::string_view::npos ? text.size() : close + 1;
}

}  // namespace

std::size_t openBrackets( std::string_view text ) {
   std::size_t open = 0;
   for ( std::size_t at = 0; at < text.size(); ++at ) {
      if ( isIn( text[ at ], "'\"" ) && beginsSomething( text, at ) ) {
         at = behindQuote( text, at ) - 1;
      } else if ( text[ at ] == '#' && ( at == 0 || isIn( text[ at - 1 ], kBlanks ) ) ) {
         at = std::min( text.find( '\n', at ), text.size() );
      } else if ( isIn( text[ at ], "[{" ) ) {
         ++open;
      } else if ( isIn( text[ at ], "]}" ) && open > 0 ) {
         --open;
      }
   }
   return open;
}

namespace {

// The word that begins there, with its quotes.
std::string_view quotedAt( std::string_view text, std::size_t at ) {
   std::size_t const end = behindQuote( text, at );
   if ( end - at < 2 || text[ end - 1 ] != text[ at ] ) {
      throw Story::InputError( "a quote is not closed; close it" );
   }
   return text.substr( at, end - at );
}

// The word that begins there; blanks in braces belong to it.
std::string_view unquotedAt( std::string_view text, std::size_t at ) {
   std::size_t end = std::min( text.find_first_of( kBlanks, at ), text.size() );
   while ( text[ at ] == '{' && openBrackets( text.substr( at, end - at ) ) > 0 ) {
      if ( end == text.size() ) {
         throw Story::InputError( "a bracket is not closed; close it" );
      }
      ++end;
   }
   return text.substr( at, end - at );
}

}  // namespace

std::vector< std::string > wordsOf( std::string_view text ) {
   std::vector< std::string > words;
   std::size_t at = text.find_first_not_of( kBlanks );
   while ( at < text.size() && text[ at ] != '#' ) {
      bool const isQuoted = isIn( text[ at ], "'\"" );
      std::string_view const word = isQuoted ? quotedAt( text, at ) : unquotedAt( text, at );
      words.emplace_back( isQuoted ? word.substr( 1, word.size() - 2 ) : word );
      at = text.find_first_not_of( kBlanks, at + word.size() );
   }
   return words;
}

std::string_view firstWord( std::string_view text ) {
   std::size_t const begin = std::min( text.find_first_not_of( kBlanks ), text.size() );
   std::size_t const end = std::min( text.find_first_of( kBlanks, begin ), text.size() );
   return text.substr( begin, end - begin );
}

std::string_view behindFirstWord( std::string_view text ) {
   std::string_view const word = firstWord( text );
   std::string_view rest = text;
   rest.remove_prefix( static_cast< std::size_t >( word.end() - text.begin() ) );
   rest.remove_prefix( std::min( rest.find_first_not_of( kBlanks ), rest.size() ) );
   return rest.substr( 0, rest.find_last_not_of( kBlanks ) + 1 );
}

}  // namespace Shell
