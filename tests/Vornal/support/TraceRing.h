// A trace ring that is in use while this object lives, with the lines that have gone to it.
#pragma once

#include <string>
#include <vector>

#include <Trace/Ring.h>

namespace Support {

class TraceRing {
 public:
   explicit TraceRing( std::size_t records = 64 ) : memory_( Trace::Ring::sizeFor( records ) ) {
      Trace::ringIs( &ring_ );
      Trace::ringLevelsIs( "VornalEvpnSm", "0-9" );
   }
   TraceRing( TraceRing const & ) = delete;
   TraceRing & operator=( TraceRing const & ) = delete;
   ~TraceRing() { Trace::ringIs( nullptr ); }

   // "LEVEL TEXT", oldest first.
   std::vector< std::string > lines() const {
      std::vector< std::string > lines;
      for ( auto const & line : Trace::Ring::decode( memory_ ) ) {
         lines.push_back( std::to_string( line.level ) + " " + line.text );
      }
      return lines;
   }

 private:
   std::vector< std::byte > memory_;
   Trace::Ring ring_{ memory_ };
};

}  // namespace Support
