// Remembers which class ids were granted before their present request.
//
// A plug-in can end a request and make it again. The grant that still stands belongs to the old
// request: it returns to the allocator, and a new grant follows. The present state does not show
// this, so this class watches requests and grants.
// Threads: the activity's.
#pragma once

#include <set>

#include <Kiv/Reactor.h>
#include <VornalCentral/I2EClassIdIndex.h>

namespace Audit {

class GrantHistory {
 public:
   using Requests = VornalCentral::I2EClassIdIndexConfig;
   using Grants = VornalCentral::I2EClassIdIndexStatus;

   // Either may be empty; then no grant is old.
   GrantHistory( Quelm::Ptr< Requests const > const & requests,
                 Quelm::Ptr< Grants const > const & grants );

   // VTEPs whose grant is older than their request.
   std::set< Pelk::IpGenAddr > const & oldGrants() const { return old_; }

 private:
   Quelm::Ptr< Grants const > grants_;
   std::set< Pelk::IpGenAddr > old_;
   Kiv::Watch< Requests > requestsWatch_;
   Kiv::Watch< Grants > grantsWatch_;
};

}  // namespace Audit
