// The rules of an ingress group in DPDK's classifier (rte_acl), to measure the chip's lookup
// beside it.
//
// The classifier compiles a set of rules into tries once, and then looks keys up in batches. A rule
// cannot be added or taken out: the set is compiled anew.
#pragma once

#include <memory>
#include <vector>

#include <FieldProcessor/Group.h>

namespace Bench {

class AclLookup {
 public:
   // Starts DPDK the first time, without huge pages and devices. Quelm::Error when it refuses.
   explicit AclLookup( Chip::Group const & group );
   AclLookup( AclLookup const & ) = delete;
   AclLookup & operator=( AclLookup const & ) = delete;
   ~AclLookup();

   // The group's rules as they are now.
   void compile();

   // A frame's fields as the classifier takes them: bytes in network order.
   struct Key {
      explicit Key( Chip::IngressFields const & frame );

      U8 tunnelTerminated;  // the classifier wants its first field to be one byte
      U8 unused[ 3 ]{};
      U32 srcVxlanGport;
      U32 packetRes;
      U32 vxlanNetworkId;
   };

   // The ids of the winners, 0 where none matches; by the classifier's scalar search.
   void find( std::vector< U8 const * > const & keys, std::vector< U32 > & winners ) const;

 private:
   struct Context;

   Chip::Group const & group_;
   std::unique_ptr< Context > context_;
};

}  // namespace Bench
