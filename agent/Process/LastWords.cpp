#include <Process/LastWords.h>

#include <charconv>

namespace Process {

namespace {

// The line, or the beginning of a line that is too long.
std::string shortened( std::string const & line ) {
   if ( line.size() <= LastWords::kLongestLine ) {
      return line;
   }
   std::size_t end = LastWords::kLongestLine;
   // Do not cut a UTF-8 character.
   for ( int n = 0; n < 3 && ( static_cast< unsigned char >( line[ end ] ) & 0xc0U ) == 0x80;
         ++n ) {
      --end;
   }
   return line.substr( 0, end ) + " ...";
}

}  // namespace

std::optional< Story::Assertion > assertionIn( std::string_view line ) {
   constexpr std::string_view kBefore = ": Assertion '";
   constexpr std::string_view kAfter = "' failed.";
   constexpr std::size_t kMostDigits = 9;
   std::size_t const colon = line.find( ':' );
   if ( colon == 0 || colon == std::string_view::npos || !line.ends_with( kAfter ) ) {
      return std::nullopt;
   }
   int number = 0;
   char const * const digits = line.data() + colon + 1;
   auto const [ end, error ] = std::from_chars( digits, line.data() + line.size(), number );
   auto const count = static_cast< std::size_t >( end - digits );
   std::string_view const rest = line.substr( colon + 1 + count );
   std::size_t const before = rest.find( kBefore );
   if ( error != std::errc() || *digits == '-' || count > kMostDigits ||
        !rest.starts_with( ": " ) || before < 2 || before == std::string_view::npos ||
        before + kBefore.size() + kAfter.size() > rest.size() ) {
      return std::nullopt;
   }
   std::string_view const function = rest.substr( 2, before - 2 );
   std::string_view expression = rest.substr( before + kBefore.size() );
   expression.remove_suffix( kAfter.size() );
   return Story::Assertion{ std::string( line.substr( 0, colon ) ), number, std::string( function ),
                            std::string( expression ) };
}

void LastWords::lineNew( std::string const & line ) {
   lines_.push_back( shortened( line ) );
   if ( lines_.size() > kMostLines ) {
      lines_.pop_front();
   }
   if ( auto const assertion = assertionIn( line ) ) {
      assertion_ = assertion;
   }
}

}  // namespace Process
