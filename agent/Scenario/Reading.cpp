#include <Scenario/Reading.h>

#include <algorithm>
#include <sstream>

#include <Scenario/Document.h>
#include <Scenario/ShownTraces.h>

namespace Scenario {

namespace {

bool matches( std::string_view pattern, std::string_view name ) {
   return pattern.ends_with( '*' ) ? name.starts_with( pattern.substr( 0, pattern.size() - 1 ) )
                                   : name == pattern;
}

}  // namespace

YAML::Node Reading::add( std::string const & name, std::string const & text ) {
   documentIn( text, name );  // throws if it is none
   int const before = sources_.add( name, text );
   directory_ = std::filesystem::path( name ).parent_path();
   text_ += '\n' + text;
   return parsed( std::string( static_cast< std::size_t >( before ), '\n' ) + text );
}

// Only blanks and comments stand between the dash and the next node.
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
   ++unread_;
   objection( line, std::move( message ) );
}

void Reading::objection( int line, std::string message ) {
   problems_.push_back( { "", line, std::move( message ) } );
   if ( problems_.size() == kMostProblems ) {
      throw ReadError( problems() );
   }
}

std::optional< U16 > Reading::module( U16 unit, int line ) {
   if ( auto const found = modules_.find( unit ); found != modules_.end() ) {
      return found->second;
   }
   // A switch without units is reported there, once.
   if ( !modules_.empty() && judges( Ground::units ) ) {
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

void Reading::compare() {
   agreement_.check( *this );
   checkUses();
}

void Reading::checkUses() {
   for ( Use const & use : uses_ ) {
      bool const isPortChannel = Pelk::isPortChannel( use.intf );
      if ( !defined_.contains( use.intf ) &&
           judges( isPortChannel ? Ground::portChannels : Ground::interfaces ) ) {
         objection( use.line, use.intf.stringValue() + " is not defined; define it under '" +
                                 ( isPortChannel ? "port-channels" : "interfaces" ) + "'" );
      }
   }
}

std::vector< Problem > Reading::problems() {
   std::stable_sort( problems_.begin(), problems_.end(),
                     []( Problem const & a, Problem const & b ) { return a.line < b.line; } );
   for ( Problem & problem : problems_ ) {
      auto const [ name, line ] = sources_.at( problem.line );
      problem.file = name;
      problem.line = line;
   }
   return std::move( problems_ );
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
