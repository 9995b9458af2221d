// The input of a target that takes it piece by piece: numbers, choices, and the bytes that are
// left. An input that is over gives zeros, so every input is one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

namespace Fuzz {

class Pieces {
 public:
   Pieces( std::uint8_t const * data, std::size_t size ) : left_( data, size ) {}

   bool isOver() const { return left_.empty(); }
   std::size_t size() const { return left_.size(); }

   std::uint8_t byte() {
      if ( left_.empty() ) {
         return 0;
      }
      std::uint8_t const byte = left_.front();
      left_ = left_.subspan( 1 );
      return byte;
   }
   // Of so many bytes, the most significant first.
   std::uint64_t number( std::size_t bytes ) {
      std::uint64_t number = 0;
      for ( std::size_t n = 0; n < bytes; ++n ) {
         number = number << 8U | byte();
      }
      return number;
   }
   bool yesOrNo() { return ( byte() & 1U ) != 0; }
   // A number below `end`, which is at most 256.
   unsigned below( unsigned end ) { return byte() % end; }
   template< typename All > auto const & oneOf( All const & all ) {
      return all[ below( static_cast< unsigned >( std::size( all ) ) ) ];
   }
   // At most so many bytes.
   std::span< std::uint8_t const > bytes( std::size_t most ) {
      auto const taken = left_.first( std::min( most, left_.size() ) );
      left_ = left_.subspan( taken.size() );
      return taken;
   }

 private:
   std::span< std::uint8_t const > left_;
};

}  // namespace Fuzz
