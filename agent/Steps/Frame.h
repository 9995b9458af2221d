#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Frames/FrameFields.h>
#include <Pelk/IntfId.h>
#include <Steps/Step.h>

namespace Steps {

// Injects a frame of hosts that is written as fields; through a tunnel if the fields say so.
class Frame final : public Step {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   bool isAboutFrames() const override { return true; }
   void queue( Context const & context, int line ) const override;

   std::optional< Pelk::IntfId > on;  // left out: the tunnel's first underlay interface
   Chip::FrameFields fields;
};

}  // namespace Steps
