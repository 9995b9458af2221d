#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <Pelk/IntfId.h>
#include <Steps/Step.h>

namespace Steps {

// The step `frames`: injects the frames of a capture, one after the other.
class Capture final : public Step {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   bool isAboutFrames() const override { return true; }
   void queue( Context const & context, int line ) const override;

   std::filesystem::path file;
   Pelk::IntfId on;
};

}  // namespace Steps
