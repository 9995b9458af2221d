#pragma once

#include <map>
#include <optional>
#include <set>
#include <variant>

#include <Expectations/Expected.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <Pipeline/FrameKind.h>
#include <Pipeline/Reasons.h>

namespace Expectations {

// A place that a frame can leave for: an interface, or a remote VTEP.
using FrameTarget = std::variant< Pelk::IntfId, Pelk::IpGenAddr >;

// What becomes of frames that the last step of frames has injected.
class FramesLike final : public Expected {
 public:
   static std::vector< WordList > vocabulary();
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   bool isAboutFrames() const override { return true; }
   Finding check( Evidence const & evidence ) const override;

   // Which frames are meant: all of them that are as this says.
   std::optional< Pelk::IpGenAddr > from;  // the source VTEP
   std::set< Chip::FrameKind > kinds;      // empty: any
   // What holds for each of them, of which there is one at least.
   std::vector< FrameTarget > reach;
   std::vector< FrameTarget > neverReach;
   std::map< Pelk::IntfId, Chip::Verdict > verdicts;
   std::optional< Chip::DropReason > dropped;  // as a whole
   std::optional< U32 > count;                 // of the frames meant
};

}  // namespace Expectations
