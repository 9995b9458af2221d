// What the agent shares with its plug-ins by name: "vornalCommon" and "tcamManager". It tells the
// observer who asked for what.
#pragma once

#include <StateDatabase/Directory.h>
#include <Story/Observer.h>
#include <VornalLib/MounterBase.h>
#include <VornalTcam/EntryManager.h>

namespace Host {

// The agent's group manager: hands out the entry managers of the chip.
class TcamGroupManager final : public Vornal::VornalTcamGroupManager {
   KIV_ENTITY( TcamGroupManager, Vornal::VornalTcamGroupManager )

   // The entry managers are those of `chip`. The observer must outlive this object.
   TcamGroupManager( std::string name, Vornal::VornalTcamGroupManager const & chip,
                     Story::Observer & observer );

   Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > unboundedEntryManager(
      Vornal::TcamGroupAssignment assignment ) override;

 private:
   Story::Observer & observer_;
};

// The shared entities, which are those below "shared/" in a directory. Directory and observer must
// outlive this object.
class SharedEntities final : public VornalLib::SharedEntities {
 public:
   static constexpr char const * kFolder = "shared/";

   SharedEntities( StateDatabase::Directory const & directory, Story::Observer & observer )
         : directory_( directory ), observer_( observer ) {}

   Quelm::Ptr< Kiv::Entity > entity( std::string const & name ) override;

 private:
   StateDatabase::Directory const & directory_;
   Story::Observer & observer_;
};

}  // namespace Host
