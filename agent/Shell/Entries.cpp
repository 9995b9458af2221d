#include <Shell/Entries.h>

#include <algorithm>
#include <utility>

#include <Shell/Line.h>

namespace Shell {

namespace {

std::size_t indentOf( std::string_view line ) {
   return std::min( line.find_first_not_of( " \t" ), line.size() );
}

// Nothing to carry out stands there. A list of steps from a scenario begins with "steps:".
bool isBlank( std::string_view line ) {
   std::size_t const indent = indentOf( line );
   return indent == line.size() || line[ indent ] == '#' || line == "steps:";
}

}  // namespace

bool isStep( std::string_view text ) {
   std::string_view const bare = text.substr( indentOf( text ) );
   std::string_view const word = bare.substr( 0, bare.find_first_of( " \t\n" ) );
   return word.ends_with( ':' ) || bare.starts_with( '{' ) || word == "-";
}

std::vector< Entry > Entries::lineNew( std::string line ) {
   ++lines_;
   if ( line.ends_with( '\r' ) ) {
      line.pop_back();
   }
   std::vector< Entry > complete;
   if ( isPending() && goesOnWith( line ) ) {
      pending_ += '\n' + line;
   } else {
      complete = end();
      if ( !isBlank( line ) ) {
         begin( std::move( line ), complete );
      }
      return complete;
   }
   if ( !isBlock_ && openBrackets( pending_ ) == 0 ) {
      return end();
   }
   return complete;
}

bool Entries::goesOnWith( std::string const & line ) const {
   if ( indentOf( line ) == line.size() ) {
      return false;
   }
   return openBrackets( pending_ ) > 0 || ( isBlock_ && indentOf( line ) > indent_ );
}

void Entries::begin( std::string line, std::vector< Entry > & complete ) {
   bool const hasDash = isStep( line ) && line[ indentOf( line ) ] == '-';
   first_ = lines_;
   indent_ = indentOf( line );
   if ( hasDash ) {
      line[ indent_ ] = ' ';
   }
   bool const endsInColon = line.substr( 0, line.find_last_not_of( " \t" ) + 1 ).ends_with( ':' );
   bool const hasStep = isStep( line ) || firstWord( behindFirstWord( line ) ).ends_with( ':' );
   isBlock_ = hasDash || ( hasStep && endsInColon );
   pending_ = std::move( line );
   if ( !isBlock_ && openBrackets( pending_ ) == 0 ) {
      auto const one = end();
      complete.insert( complete.end(), one.begin(), one.end() );
   }
}

std::vector< Entry > Entries::end() {
   if ( !isPending() ) {
      return {};
   }
   return { { std::exchange( pending_, {} ), first_ } };
}

}  // namespace Shell
