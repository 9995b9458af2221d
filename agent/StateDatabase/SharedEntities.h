// The entities that the agent shares with its plug-ins by name: "vornalCommon" and "tcamManager". A
// directory holds them below "shared/". The observer is told which one was asked for.
#pragma once

#include <StateDatabase/Directory.h>
#include <Story/Observer.h>
#include <VornalLib/MounterBase.h>

namespace StateDatabase {

class SharedEntities final : public VornalLib::SharedEntities {
 public:
   static constexpr char const * kFolder = "shared/";

   // Directory and observer must outlive this object.
   SharedEntities( Directory const & directory, Story::Observer & observer )
         : directory_( directory ), observer_( observer ) {}

   Quelm::Ptr< Kiv::Entity > entity( std::string const & name ) override;

 private:
   Directory const & directory_;
   Story::Observer & observer_;
};

}  // namespace StateDatabase
