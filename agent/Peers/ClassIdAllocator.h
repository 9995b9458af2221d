// The central agent that hands out class ids: it grants the requests of plug-ins, and takes an id
// back when its request ends.
//
// Requests are entries of I2EClassIdIndexConfig, grants are entries of I2EClassIdIndexStatus; the
// key of both is the remote VTEP. The allocator acts on requests as events, in their order, `delay`
// turns after they were written:
// - It grants a request the lowest free id of the range.
// - While no id is free it stays silent. Once an id is free, the longest waiting request gets it.
// - A deletion cancels a request that was not granted yet.
// - The deletion of a granted request ends the grant and frees the id. This holds even if the
//   request was made again in the meantime; it then gets a new grant.
// Each grant, and each end of a grant, is a turn of its own. When the allocator starts, it
// withdraws grants without a request and serves requests without a grant.
//
// A grant can be given, changed or withdrawn by hand, through this class or directly in the entity.
// An id given by hand counts as taken; a freed id goes to the longest waiting request. After a
// withdrawal by hand, the VTEP gets another grant at its next request.
//
// A paused allocator acts on nothing and keeps requests and their ends. Once it serves again, it
// acts on them in their order, each in a turn of its own.
//
// Cost: an event is, on average, logarithmic in the number of requests, and of ids in use.
//
// Threads: the activity's.
#pragma once

#include <deque>
#include <map>
#include <set>

#include <Kiv/Activity.h>
#include <Kiv/Reactor.h>
#include <Scenario/Scenario.h>
#include <VornalCentral/I2EClassIdIndex.h>

namespace Peers {

class ClassIdAllocator {
 public:
   using Config = VornalCentral::I2EClassIdIndexConfig;
   using Status = VornalCentral::I2EClassIdIndexStatus;

   // Does nothing before start(). The activity must outlive it and its turns.
   ClassIdAllocator( Scenario::ClassIds const & range, Kiv::ActivityManager & activity,
                     Quelm::Ptr< Config > config, Quelm::Ptr< Status > status );

   // To be called in a turn, once.
   void start();

   // While paused, it grants nothing and takes nothing back.
   void pausedIs( bool paused );

   // Grants by hand, within a turn. Before start(), the allocator finds the grant when it starts.
   void grantIs( Pelk::IpGenAddr const & vtep, VornalCommon::ClassId id );
   void grantDel( Pelk::IpGenAddr const & vtep );
   bool isGranted( Pelk::IpGenAddr const & vtep ) const;

 private:
   struct Event {
      Pelk::IpGenAddr vtep;
      bool isRequest;
   };

   void noteRequest( Kiv::Change const & change );
   void noteGrant( Kiv::Change const & change );
   void queue( Event const & event );
   void turnAfter( U32 turns );
   void actOnNext();
   void release( Pelk::IpGenAddr const & vtep );
   void wait( Pelk::IpGenAddr const & vtep );
   void waitNoMore( Pelk::IpGenAddr const & vtep );
   bool canServe() const;
   // Grants the waiting requests, after the turns that are queued by now.
   void serve();
   void serveNext();
   // Above the range when no id of it is free.
   U32 lowestFree() const;
   void take( VornalCommon::ClassId id );
   void giveBack( VornalCommon::ClassId id );

   Scenario::ClassIds range_;
   Kiv::ActivityManager & activity_;
   Quelm::Ptr< Config > config_;
   Quelm::Ptr< Status > status_;
   Kiv::Watch< Config > requests_;
   Kiv::Watch< Status > grants_;
   std::deque< Event > events_;                      // not acted on yet
   std::map< Pelk::IpGenAddr, U32 > cancellations_;  // deleted requests among the events
   // VTEPs that wait for a free id, by their place in the queue; and the place of each VTEP.
   std::map< U64, Pelk::IpGenAddr > waiting_;
   std::map< Pelk::IpGenAddr, U64 > place_;
   U64 lastPlace_ = 0;
   std::map< U16, U32 > users_;  // granted ids; by hand, an id can be granted twice
   U32 unused_;                  // from here on an id of the range is free unless it has users
   std::set< U16 > returned_;    // free ids of the range below that
   bool isPaused_ = false;
   U32 heldBack_ = 0;  // events that fell due while it was paused
};

}  // namespace Peers
