#include <Exploring/Endings.h>

#include <algorithm>
#include <cctype>
#include <set>

#include <fmt/format.h>

#include <signal.h>
#include <sys/wait.h>

namespace Exploring {

namespace {

// The length of the number or the address that the text begins with.
std::size_t lengthOfNumber( std::string_view text ) {
   std::string_view const address =
      text.substr( 0, text.find_first_not_of( "0123456789abcdef.:/" ) );
   bool const isAddress = address.find( ':' ) != std::string_view::npos;
   return isAddress ? address.size()
                    : std::min( text.find_first_not_of( "0123456789./" ), text.size() );
}

// The text with N in place of each number, address and key in brackets.
std::string withoutNumbers( std::string_view text ) {
   std::string result;
   for ( std::size_t at = 0; at < text.size(); ) {
      bool const isKey = at > 0 && text[ at - 1 ] == '[';
      if ( isKey ) {
         result += 'N';
         at = std::min( text.find( ']', at ), text.size() );
      } else if ( std::isdigit( static_cast< unsigned char >( text[ at ] ) ) != 0 ) {
         result += 'N';
         at += lengthOfNumber( text.substr( at ) );
      } else {
         result += text[ at++ ];
      }
   }
   return result;
}

// "missing-rule: Mark or drop packets at IFP from vtep IP N on shared segments".
std::string textOf( Story::Difference const & difference ) {
   std::string text( nameOf( difference.kind ) );
   for ( std::string const & part : { difference.rule, difference.field } ) {
      text += part.empty() ? "" : ": " + withoutNumbers( part );
   }
   return text;
}

// The qualified name of a function, without its result and parameters, which compilers write in
// ways of their own.
std::string_view nameIn( std::string_view function ) {
   std::string_view const name = function.substr( 0, function.find( '(' ) );
   return name.substr( name.find_last_of( " *&" ) + 1 );
}

std::string textOf( int status, Process::LastWords const & words ) {
   if ( auto const & assertion = words.assertion() ) {
      return fmt::format( "{} in {}", assertion->expression, nameIn( assertion->function ) );
   }
   std::string const end = WIFSIGNALED( status )
                              ? fmt::format( "signal {}", WTERMSIG( status ) )
                              : fmt::format( "exit code {}", WEXITSTATUS( status ) );
   return words.lines().empty() ? end : end + ": " + withoutNumbers( words.lines().back() );
}

}  // namespace

void addDifferences( Audit::Report const & report, SharedFindings & findings,
                     Sequence const & sequence, U64 weight ) {
   std::set< std::string > texts;
   for ( Story::Difference const & difference : report.differences ) {
      if ( !isKnown( difference.kind ) ) {
         texts.insert( textOf( difference ) );
      }
   }
   for ( std::string const & text : texts ) {
      findings.add( Kind::difference, text, { weight, sequence } );
   }
}

void addLasting( std::set< Probing::Lasting > const & lasting, SharedFindings & findings,
                 Sequence const & sequence, U64 weight ) {
   std::set< std::string > texts;
   for ( Probing::Lasting const & one : lasting ) {
      texts.insert( one.what +
                    ( one.rule.empty() ? "" : ", kept back by " + withoutNumbers( one.rule ) ) );
   }
   for ( std::string const & text : texts ) {
      findings.add( Kind::lasting, text, { weight, sequence } );
   }
}

void addStop( int status, Process::LastWords const & words, SharedFindings & findings,
              Sequence const & sequence, U64 weight ) {
   bool const isHang = WIFSIGNALED( status ) && WTERMSIG( status ) == SIGALRM;
   findings.add( isHang ? Kind::hang : Kind::stop,
                 isHang ? "the event does not come to its end" : textOf( status, words ),
                 { weight, sequence } );
}

}  // namespace Exploring
