// The agent's group manager: hands out the entry managers of the chip, and tells the observer which
// group was asked for.
#pragma once

#include <Story/Observer.h>
#include <VornalTcam/EntryManager.h>

namespace Reporters {

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

}  // namespace Reporters
