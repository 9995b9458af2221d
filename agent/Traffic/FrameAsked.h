// The frame that a question is about.
#pragma once

#include <filesystem>
#include <optional>
#include <variant>
#include <vector>

#include <Frames/FrameFields.h>
#include <Pelk/IntfId.h>
#include <Quelm/Integers.h>
#include <VornalTypes/VornalPort.h>

namespace Traffic {

// That the scenario sends; its frames count from 1.
struct SentFrame {
   U64 number = 0;
};

// Of a capture, counted from 1.
struct CapturedFrame {
   std::filesystem::path file;
   U64 number = 0;
   std::optional< Pelk::IntfId > on;  // nothing: the first underlay interface
};

// Written as fields.
struct WrittenFrame {
   Chip::FrameFields fields;
   std::optional< Pelk::IntfId > on;  // as above
};

// The bytes of a frame, and the port where they come in.
struct ArrivingFrame {
   VornalTypes::VornalPort port;
   std::vector< U8 > bytes;
};

// Is told of the frames of a run just before they go through the switch.
class Onlooker {
 public:
   Onlooker() = default;
   Onlooker( Onlooker const & ) = delete;
   Onlooker & operator=( Onlooker const & ) = delete;
   virtual ~Onlooker() = default;

   // One frame or more come in. Until the last of them has passed, nothing changes but the MAC
   // addresses that the switch learns from them.
   virtual void framesBegin() {}
   // The frames of a run are counted from 1.
   virtual void look( U64 number, ArrivingFrame const & frame ) = 0;
};

using FrameAsked = std::variant< SentFrame, CapturedFrame, WrittenFrame >;

}  // namespace Traffic
