// Faults of the chip: calls that are not made, and requests for an entry that find no room.
//
// Each fault counts the calls that it is about from its beginning on. Of two that are due at once,
// the first one's code holds.
#pragma once

#include <string>
#include <vector>

namespace Reference {

struct CallFails {
   std::string operation;  // empty: any but getEntry
   unsigned number = 1;
   bool isLasting = false;
   int code = -1;
};

// The request with that number finds no room.
struct EntryIsRefused {
   unsigned number = 1;
};

class Faults {
 public:
   void add( CallFails const & fault ) { calls_.push_back( fault ); }
   void add( EntryIsRefused const & fault ) { requests_.push_back( fault ); }

   // The code that the next call gives instead of being made; 0 when it is made. Counts it.
   int codeOfNext( std::string const & operation );
   // Whether the next request finds no room. Counts it.
   bool isNextRefused();

 private:
   std::vector< CallFails > calls_;  // whose numbers count down
   std::vector< EntryIsRefused > requests_;
};

}  // namespace Reference
