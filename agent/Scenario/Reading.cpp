#include <Scenario/Reading.h>

#include <algorithm>
#include <numeric>
#include <sstream>

#include <Scenario/ShownTraces.h>

namespace Scenario {

namespace {

// The number of characters to insert, remove or replace that makes `b` of `a`.
std::size_t distance( std::string_view a, std::string_view b ) {
   std::vector< std::size_t > row( b.size() + 1 );
   std::iota( row.begin(), row.end(), std::size_t{ 0 } );
   for ( std::size_t i = 0; i < a.size(); ++i ) {
      std::size_t diagonal = row[ 0 ];
      row[ 0 ] = i + 1;
      for ( std::size_t j = 0; j < b.size(); ++j ) {
         std::size_t const replaced = diagonal + ( a[ i ] == b[ j ] ? 0 : 1 );
         diagonal = row[ j + 1 ];
         row[ j + 1 ] = std::min( { replaced, row[ j ] + 1, diagonal + 1 } );
      }
   }
   return row[ b.size() ];
}

bool matches( std::string_view pattern, std::string_view name ) {
   return pattern.ends_with( '*' ) ? name.starts_with( pattern.substr( 0, pattern.size() - 1 ) )
                                   : name == pattern;
}

}  // namespace

// Blanks and comments alone stand between the dash and what comes next.
int Reading::lineOfDash( YAML::Mark const & next ) const {
   std::istringstream in( text_ );
   int dash = 1;
   std::string line;
   for ( int n = 0; n < next.line && std::getline( in, line ); ++n ) {
      auto const first = line.find_first_not_of( " \t\r" );
      bool const hasContent = first != std::string::npos && line[ first ] != '#';
      dash = hasContent ? n + 1 : dash;
   }
   std::getline( in, line );
   auto const column = static_cast< std::size_t >( std::max( next.column, 0 ) );
   bool const isWritten = line.substr( 0, column ).find_first_not_of( " \t" ) != std::string::npos;
   return isWritten ? next.line + 1 : dash;
}

void Reading::problem( int line, std::string message ) {
   problems_.push_back( { file_, line, std::move( message ) } );
   if ( problems_.size() == kMostProblems ) {
      refuse();
   }
}

std::optional< U16 > Reading::module( U16 unit, int line ) {
   if ( auto const found = modules_.find( unit ); found != modules_.end() ) {
      return found->second;
   }
   // Without any unit the problem is told there, once.
   if ( !modules_.empty() ) {
      std::string known;
      for ( auto const & [ number, _ ] : modules_ ) {
         known += ( known.empty() ? "" : ", " ) + std::to_string( number );
      }
      problem( line, "unit " + std::to_string( unit ) + " is not among the switch's units (" +
                        known + "); use one of these, or add it under 'units'" );
   }
   return std::nullopt;
}

bool Reading::isTraced( std::string_view handle, int level ) const {
   bool isOn = isShownFromTheStart( handle, level );
   for ( auto const & [ names, levels ] : trace_ ) {
      isOn = matches( names, handle ) ? ( levels >> level & 1U ) != 0 : isOn;
   }
   return isOn;
}

void Reading::check() {
   agreement_.check( *this );
   for ( Use const & use : uses_ ) {
      if ( !defined_.contains( use.intf ) ) {
         bool const isPortChannel = Pelk::isPortChannel( use.intf );
         problem( use.line, use.intf.stringValue() + " is not defined; define it under '" +
                               ( isPortChannel ? "port-channels" : "interfaces" ) + "'" );
      }
   }
   if ( !problems_.empty() ) {
      refuse();
   }
}

void Reading::refuse() {
   std::stable_sort( problems_.begin(), problems_.end(),
                     []( Problem const & a, Problem const & b ) { return a.line < b.line; } );
   throw ReadError( std::move( problems_ ) );
}

std::string_view nearest( std::string_view text, std::vector< std::string_view > const & known ) {
   std::string_view best;
   // A third of the characters may be wrong, and one in the shortest of words.
   std::size_t least = std::max< std::size_t >( text.size() / 3, 1 ) + 1;
   for ( std::string_view const word : known ) {
      std::size_t const longer = std::max( text.size(), word.size() );
      std::size_t const shorter = std::min( text.size(), word.size() );
      // Lengths alone tell most words apart, and a long text is not compared at all.
      std::size_t const steps = longer - shorter < least ? distance( text, word ) : least;
      if ( steps < least ) {
         least = steps;
         best = word;
      }
   }
   return best;
}

std::string listed( std::vector< std::string_view > const & words, std::string const & last ) {
   std::string text;
   for ( std::size_t n = 0; n < words.size(); ++n ) {
      bool const isLast = n + 1 == words.size();
      text += n == 0 ? "" : isLast ? ' ' + last + ' ' : ", ";
      text += words[ n ];
   }
   return text;
}

std::string knownOnes( std::vector< std::string_view > const & words ) {
   return ( words.size() == 1 ? "known is " : "known are " ) + listed( words, "and" );
}

std::string_view kindOf( YAML::Node const & node ) {
   switch ( node.Type() ) {
   case YAML::NodeType::Map: return "a mapping";
   case YAML::NodeType::Sequence: return "a list";
   case YAML::NodeType::Scalar: return node.Scalar().empty() ? "empty" : "text";
   default: return "empty";
   }
}

}  // namespace Scenario
