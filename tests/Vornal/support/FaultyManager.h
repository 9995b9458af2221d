// The software chip's ingress entry manager, on which one operation does not succeed: the entry is
// not written, and the result is the code given.
#pragma once

#include "LocalBiasSwitch.h"

namespace Support {

struct ManagerFault {
   std::string operation;  // "installEntry" or "reinstallEntry"
   U32 nth = 1;            // which of its calls
   S32 code = -1;
};

class FaultyManager final : public Chip::SoftTcamEntryManager {
 public:
   FaultyManager( LocalBiasSwitch & leaf, ManagerFault fault )
         : SoftTcamEntryManager( Vornal::kIfpLocalBiasGroup, leaf.board.units(),
                                 &leaf.callObserver() ),
           fault_( std::move( fault ) ) {}

   S32 installEntry( U32 unit, U32 entryId ) override {
      return isFault( "installEntry" ) ? fault_.code
                                       : SoftTcamEntryManager::installEntry( unit, entryId );
   }
   S32 reinstallEntry( U32 unit, U32 entryId ) override {
      return isFault( "reinstallEntry" ) ? fault_.code
                                         : SoftTcamEntryManager::reinstallEntry( unit, entryId );
   }

 private:
   bool isFault( std::string const & operation ) {
      return operation == fault_.operation && ++calls_ == fault_.nth;
   }

   ManagerFault fault_;
   U32 calls_ = 0;
};

}  // namespace Support
