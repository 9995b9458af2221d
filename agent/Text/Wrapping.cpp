#include <Text/Wrapping.h>

#include <algorithm>
#include <sstream>

namespace Text {

namespace {

// Where a line of at most `width` characters ends: before a blank, or else behind a slash.
std::size_t endOfLine( std::string const & text, std::size_t width ) {
   std::size_t const blank = text.rfind( ' ', width );
   if ( blank != std::string::npos && blank != 0 ) {
      return blank;
   }
   std::size_t const slash = text.rfind( '/', width - 1 );
   return slash != std::string::npos && slash != 0 ? slash + 1 : width;
}

}  // namespace

std::vector< std::string > wrapped( std::string const & text, std::size_t width ) {
   std::vector< std::string > lines;
   std::string rest = text;
   while ( rest.size() > width ) {
      std::size_t const end = endOfLine( rest, width );
      lines.push_back( rest.substr( 0, end ) );
      rest.erase( 0, rest[ end ] == ' ' ? end + 1 : end );
   }
   lines.push_back( rest );
   return lines;
}

std::string narrowed( std::string const & text, std::size_t width ) {
   constexpr std::size_t kFurther = 6;
   constexpr std::size_t kNarrowest = 20;
   std::string result;
   std::istringstream lines( text );
   for ( std::string line; std::getline( lines, line ); ) {
      // A sign in front of the text is a part of the indentation.
      std::size_t const indent = std::min( line.find_first_not_of( " +-~" ), line.size() );
      std::size_t const room = std::max( width, indent + kFurther + kNarrowest ) - indent;
      std::string const first = wrapped( line.substr( indent ), room ).front();
      result += line.substr( 0, indent ) + first + '\n';
      std::size_t const next = line.find_first_not_of( ' ', indent + first.size() );
      if ( next != std::string::npos ) {
         for ( std::string const & rest : wrapped( line.substr( next ), room - kFurther ) ) {
            result += std::string( indent + kFurther, ' ' ) + rest + '\n';
         }
      }
   }
   return result;
}

}  // namespace Text
