#include <Exploring/Exchanges.h>

#include <algorithm>
#include <numeric>

namespace Exploring {

namespace {

using Scenario::Yaml;

// The exchanges within one group; the first changes nothing.
std::vector< WordExchange > exchangesWithin( Alike const & group ) {
   std::vector< std::size_t > order( group.size() );
   std::iota( order.begin(), order.end(), 0 );
   std::vector< WordExchange > all;
   do {
      WordExchange exchange;
      for ( std::size_t thing = 0; thing < group.size(); ++thing ) {
         for ( std::size_t name = 0; name < group[ thing ].size(); ++name ) {
            exchange[ group[ thing ][ name ] ] = group[ order[ thing ] ][ name ];
         }
      }
      all.push_back( std::move( exchange ) );
   } while ( std::next_permutation( order.begin(), order.end() ) );
   return all;
}

std::string const & exchanged( std::string const & word, WordExchange const & exchange ) {
   auto const found = exchange.find( word );
   return found == exchange.end() ? word : found->second;
}

// Steps happen in their order.
bool isInOrder( Yaml const & value ) {
   return value.kind == Yaml::Kind::list && ( value.key == "steps" || value.key == "turn" );
}

Yaml inOneOrder( Yaml value, WordExchange const & exchange ) {
   bool const isOrdered = isInOrder( value );
   value.isInLine = true;
   value.key = exchanged( value.key, exchange );
   value.text = exchanged( value.text, exchange );
   for ( Yaml & part : value.parts ) {
      part = inOneOrder( std::move( part ), exchange );
   }
   if ( !isOrdered ) {
      std::sort( value.parts.begin(), value.parts.end(), []( Yaml const & a, Yaml const & b ) {
         return a.key != b.key ? a.key < b.key : textOf( a ) < textOf( b );
      } );
   }
   return value;
}

}  // namespace

std::vector< WordExchange > exchangesOf( std::vector< Alike > const & groups ) {
   std::vector< WordExchange > all{ {} };
   for ( Alike const & group : groups ) {
      std::vector< WordExchange > longer;
      for ( WordExchange const & before : all ) {
         for ( WordExchange exchange : exchangesWithin( group ) ) {
            exchange.insert( before.begin(), before.end() );
            longer.push_back( std::move( exchange ) );
         }
      }
      all = std::move( longer );
   }
   all.erase( all.begin() );
   return all;
}

std::string exchangedText( Yaml const & document, WordExchange const & exchange ) {
   return textOf( inOneOrder( document, exchange ) );
}

}  // namespace Exploring
