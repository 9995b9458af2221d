// The published state that local-bias rules depend on: a copy at one moment.
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

// The chip's capabilities decide which state machine the plug-in builds (Audit/Variant.h).
enum class Variant : U8 { egressMask, classId };

struct State {
   bool isPluginReady = false;  // the plug-in has marked its dependency point
   Variant variant = Variant::egressMask;
   bool isOverrideRuleOn = true;  // the feature toggle "SbdEvpnTcamOverrideRule"
   // The platform itself keeps known L3 multicast out of the filter.
   bool isL3MulticastExempt = false;

   std::map< U16, U16 > modules;                                    // module id by unit
   std::map< Pelk::IntfId, VornalTypes::VornalPort > ports;         // live
   std::map< Pelk::IntfId, std::set< Pelk::IntfId > > lags;         // members by port channel
   std::map< Pelk::IntfId, std::set< Pelk::IpGenAddr > > segments;  // remote VTEPs by interface
   std::map< Pelk::IpGenAddr, U32 > virtualPorts;                // of VTEPs reached through Vxlan1
   std::map< Pelk::IntfId, std::map< L3::VrfName, U32 > > vnis;  // by tunnel interface
   std::set< Pelk::IpGenAddr > classIdRequests;
   std::map< Pelk::IpGenAddr, VornalCommon::ClassId > classIds;  // valid and granted

   // --- VNIs that withdrawn tunnel interfaces left behind (Audit/TunnelHistory.h)
   std::set< U32 > leftVnis;
   std::set< U32 > freedVnis;
};

// The state that these entities publish, found by their types; a missing entity reads as empty.
State stateOf( StateDatabase::Directory::Entities const & published );

}  // namespace Audit
