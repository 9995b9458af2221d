// TCAM groups with room for everything. What is asked of them is written down in a journal.
#pragma once

#include <functional>
#include <string>

#include <VornalTcam/EntryManager.h>

#include "Journal.h"

namespace Support {

// Writes "tcam GROUP OPERATION UNIT ENTRY". A request has its key in the place of the entry, unless
// the key is empty.
class EntryManager : public Vornal::VornalUnboundedTcamEntryManager {
 public:
   EntryManager( Vornal::TcamGroupAssignment assignment, Journal & journal )
         : VornalUnboundedTcamEntryManager( assignment ), journal_( journal ) {}

   U32 getEntry( U32 unit, std::string const &, VornalTcam::RequestKey const & key ) override {
      write( "getEntry", unit );
      if ( key != VornalTcam::RequestKey() ) {
         journal_.back() += " " + Quelm::textOf( key );
      }
      return ++lastEntry_;
   }
   S32 installEntry( U32 unit, U32 entryId ) override {
      write( "installEntry", unit, entryId );
      return 0;
   }
   S32 reinstallEntry( U32 unit, U32 entryId ) override {
      write( "reinstallEntry", unit, entryId );
      return 0;
   }
   void releaseEntry( U32 unit, U32 entryId ) override { write( "releaseEntry", unit, entryId ); }
   void setPriorityForEntry( U32 unit, U32 entryId, U32 ) override {
      write( "setPriorityForEntry", unit, entryId );
   }
   void addEgressMaskAction( U32 unit, U32 entryId, _shr_pbmp const & ) override {
      write( "addEgressMaskAction", unit, entryId );
   }
   void updateEgressMaskAction( U32 unit, U32 entryId, _shr_pbmp const & ) override {
      write( "updateEgressMaskAction", unit, entryId );
   }
   Vornal::EgressMaskResult getEgressMaskActionPbmp( U32 unit, U32 entryId ) override {
      write( "getEgressMaskActionPbmp", unit, entryId );
      return { 0, {} };
   }

 private:
   template< typename... Ids > void write( std::string const & operation, Ids... ids ) {
      std::string line = "tcam " + std::to_string( group() ) + " " + operation;
      ( ( line += " " + std::to_string( ids ) ), ... );
      journal_.push_back( line );
   }

   Journal & journal_;
   U32 lastEntry_ = 0;
};

// Writes "group ASSIGNMENT", then does what the test wants to happen at that moment.
class GroupManager : public Vornal::VornalTcamGroupManager {
 public:
   explicit GroupManager( Journal & journal )
         : VornalTcamGroupManager( "tcamManager" ), journal_( journal ) {}

   std::function< void( Vornal::TcamGroupAssignment ) > onLookUp = []( auto ) {};

   Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > unboundedEntryManager(
      Vornal::TcamGroupAssignment assignment ) override {
      journal_.push_back( "group " + std::to_string( assignment ) );
      onLookUp( assignment );
      return VornalTcamGroupManager::unboundedEntryManager( assignment );
   }

 private:
   Journal & journal_;
};

}  // namespace Support
