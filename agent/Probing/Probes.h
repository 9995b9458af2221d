// Probes of a switch while its rules are made: behind every call of the chip, frames show what the
// rules of that moment do.
//
// The plug-in promises: a frame for several receivers that comes from a VTEP does not leave by a
// port of a segment that the VTEP shares (RFC 8365, section 8.3.1); known unicast reaches each
// port, and so does known L3 multicast in the VNI of a VRF; no frame is kept back from another
// port. At rest the audit judges the rules. Between two calls of one step they can be in any state,
// and no audit can say which of them is wrong. So frames are sent, and each is judged by the
// published state of the moment alone.
//
// A frame that goes wrong behind a call and right behind a later one, or until the state wants it
// otherwise, is a transient. Its length is the number of calls behind which it went wrong. It has
// one of four names:
//
//    "still leave by a shared port"     the state wants it otherwise than before, and the rules
//    have "do not reach a port yet"          not followed "leave by a shared port again"     it
//    went right before, and the state has wanted the same of it "reach a port no more" all along
//
// One that goes wrong when the switch is at rest is lasting, and is no transient. It is not counted
// again until it has gone right. A lasting one has a reason when the audit tells a difference,
// known or not, that can be the cause.
//
// The frames go through a pipeline of their own, over the rules of the switch's chips. They change
// neither its addresses nor its counters.
//
// Failures: a probe that is not what it is to be, as one to a host that was not learned, is a
// failed assertion.
//
// Cost: all frames at each call, about a microsecond for each copy; and the frames made anew at a
// change of the published state. Threads: the activity's. Published entities are read when a change
// of them is told, never at a call.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include <Audit/Audit.h>
#include <Pipeline/Pipeline.h>
#include <Probing/ProbedSwitch.h>
#include <Story/Observer.h>

namespace Probing {

// A way of a frame out of the switch.
struct Way {
   VornalTypes::VornalPort arrival{};
   std::optional< Pelk::IpGenAddr > vtep{};  // none: from a host of this switch
   Chip::Vni vni = 0;
   Chip::FrameKind kind{};
   Pelk::IntfId intf{};
   VornalTypes::VornalPort port{};

   friend auto operator<=>( Way const &, Way const & ) = default;
};

struct Lasting {
   std::string what;
   U16 unit = 0;                             // of the port
   std::optional< Pelk::IpGenAddr > vtep{};  // whose frames it is
   std::string rule{};  // the name of the one that keeps them back; empty when none does

   friend auto operator<=>( Lasting const &, Lasting const & ) = default;
};

struct Seen {
   std::map< std::string, U32 > transients{};  // what happened: the longest, in calls
   std::set< Lasting > lasting{};
   U64 frames = 0;  // that were sent
};

// What goes wrong at rest without a reason, though the plug-in is ready.
std::set< Lasting > unexplained( Seen const & seen, Audit::Report const & report,
                                 bool isPluginReady );

class Probes final : public Story::Observer {
 public:
   using StateNow = std::function< Audit::State() >;

   // The switch with these chips is probed from now on, at its calls. They outlive the probes.
   void watch( Chip::Units const & units, StateNow stateNow );

   // The probes behind a call are sent when the call is told.
   void onEvent( Story::Event const & event ) override;

   // What has been seen since this was last asked. The switch is at rest.
   Seen seenAtRest();

 private:
   struct Watch {
      bool isToBeKept = false;  // back
      bool isWrong = false;
      bool wasRight = false;                  // since the state has wanted it like this
      bool isLasting = false;                 // wrong, and has been at rest
      U32 calls = 0;                          // behind which it went wrong
      U64 look = 0;                           // the last one at which the frame took this way
      std::optional< Chip::RuleKey > rule{};  // that keeps it back
   };

   void readState();
   void takeState();
   void look( bool isBehindCall );
   void see( Way const & way, Chip::Copy const & copy, bool isBehindCall );
   std::string nameOf( Chip::RuleKey const & rule ) const;
   bool isToBeKept( Way const & way ) const;
   void end( Way const & way, Watch const & watch );

   Chip::Units const * units_ = nullptr;
   std::optional< Chip::Pipeline > pipeline_;
   StateNow stateNow_;
   bool hasCalls_ = false;
   Audit::State state_;
   std::set< Chip::Vni > vnis_;  // that VRFs have or had
   ProbedSwitch switch_;
   std::map< Way, Watch > watches_;
   U64 look_ = 0;
   Seen seen_;
};

}  // namespace Probing
