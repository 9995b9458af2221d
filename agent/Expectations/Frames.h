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

// A frame can leave for an interface or for a remote VTEP.
using FrameTarget = std::variant< Pelk::IntfId, Pelk::IpGenAddr >;

// Expects how the switch treats the frames that the last step of frames has injected.
class FramesLike final : public ExpectedNow {
 public:
   static std::vector< WordList > vocabulary();
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   bool isAboutFrames() const override { return true; }
   Finding check( Evidence const & evidence ) const override;

   // The frames meant: all that match these members.
   std::optional< Pelk::IpGenAddr > from;  // the source VTEP
   std::set< Chip::FrameKind > kinds;      // empty: any
   // The expected treatment of each of them. There must be one frame at least.
   std::vector< FrameTarget > reach;
   std::vector< FrameTarget > neverReach;
   std::map< Pelk::IntfId, Chip::Verdict > verdicts;
   std::optional< Chip::DropReason > dropped;  // as a whole
   std::optional< U32 > count;                 // of the frames meant
};

}  // namespace Expectations
