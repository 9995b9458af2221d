// Which class ids were granted before they were asked for.
//
// A request that ends, and is made again, is a new one: the grant that still stands is on its way
// back to the allocator, and another one will follow. No present state says so; this does, by
// watching requests and grants.
//
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

   // Either may be missing; then no grant is old.
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
