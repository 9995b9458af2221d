// The central agent that hands out class ids: grants what plug-ins ask for, takes back what they
// give back.
//
// Requests are entries of I2EClassIdIndexConfig, grants are entries of I2EClassIdIndexStatus, both
// by remote VTEP. The allocator acts on requests as events, `delay` turns after they were written,
// in their order:
// - a request is granted the lowest free id of the range;
// - while no id is free it stays silent, and serves the longest waiting first once one is;
// - a request that is deleted before it was granted is cancelled;
// - a granted one that is deleted loses its grant and gives its id back, also when it was asked for
//   again meanwhile; it is then granted anew.
// Each grant, and each grant that goes, is a turn of its own. When it starts it finds what is there
// already: a grant without a request is withdrawn, a request without a grant is served.
//
// A grant can be given, changed or withdrawn by hand, through this class or past it. The id that is
// given counts as taken, and one that comes free serves who has waited longest; a VTEP whose grant
// was withdrawn by hand gets another one when it is asked for again.
//
// While it is paused it acts on nothing: requests, and their ends, are kept until it serves again,
// and then acted on in their order, each in a turn of its own.
//
// Cost: an event is logarithmic in the number of requests, and of ids in use.
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

   // Does nothing before it starts. The activity must outlive it, turns included.
   ClassIdAllocator( Scenario::ClassIds const & range, Kiv::ActivityManager & activity,
                     Quelm::Ptr< Config > config, Quelm::Ptr< Status > status );

   // To be called in a turn, once.
   void start();

   // Paused, it grants nothing and takes nothing back.
   void isPausedIs( bool paused );

   // Grants by hand, within a turn. Before it starts, what it is to find there.
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
   // Grants what can be granted, behind the turns that are queued by now.
   void serve();
   void serveNext();
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
   // For a free id: by the order of their coming, and the other way round.
   std::map< U64, Pelk::IpGenAddr > waiting_;
   std::map< Pelk::IpGenAddr, U64 > place_;
   U64 lastPlace_ = 0;
   std::set< U16 > free_;        // ids of the range
   std::map< U16, U32 > users_;  // of ids that are granted; by hand, one can be given twice
   bool isPaused_ = false;
   U32 heldBack_ = 0;  // events whose turn has come while it was paused
};

}  // namespace Peers
