// What the other agents publish, as far as local-bias rules depend on it: a copy at one moment.
#pragma once

#include <map>
#include <set>

#include <L3/VrfName.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <StateDatabase/Directory.h>
#include <VornalCommon/ClassId.h>
#include <VornalTypes/VornalPort.h>

namespace Audit {

// What the chip can do decides which of the state machines the plug-in builds (Audit/Variant.h).
enum class Variant : U8 { egressMask, classId };

struct State {
   bool isPluginReady = false;  // the plug-in has marked its dependency point
   Variant variant = Variant::egressMask;
   bool isOverrideRuleOn = true;  // the feature toggle "SbdEvpnTcamOverrideRule"
   // The platform keeps known L3 multicast out of the filter by itself.
   bool isL3MulticastExempt = false;

   std::map< U16, U16 > modules;                                    // module id by unit
   std::map< Pelk::IntfId, VornalTypes::VornalPort > ports;         // live
   std::map< Pelk::IntfId, std::set< Pelk::IntfId > > lags;         // members by port channel
   std::map< Pelk::IntfId, std::set< Pelk::IpGenAddr > > segments;  // remote VTEPs by interface
   std::map< Pelk::IpGenAddr, U32 > virtualPorts;                // of VTEPs reached through Vxlan1
   std::map< Pelk::IntfId, std::map< L3::VrfName, U32 > > vnis;  // by tunnel interface; those given
   std::set< Pelk::IpGenAddr > classIdRequests;
   std::map< Pelk::IpGenAddr, VornalCommon::ClassId > classIds;  // the valid ones that are granted

   // --- What VNIs remain of tunnel interfaces that have gone (Audit/TunnelHistory.h)
   std::set< U32 > leftVnis;
   std::set< U32 > freedVnis;
};

// The state that these entities publish, by their types; what is not there reads as empty.
State stateOf( StateDatabase::Directory::Entities const & published );

}  // namespace Audit
