// The frames of a run in little room: a fate that many frames share stands once.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include <Report/RuleHistory.h>
#include <Report/Texts.h>
#include <Story/Event.h>

namespace Report {

struct FrameCopy {
   TextId interface = 0;
   std::optional< U32 > unit{};
   std::optional< U32 > port{};
   std::optional< TextId > vtep{};
   TextId verdict = 0;
   std::optional< U32 > rule{};  // by number, that decided

   friend auto operator<=>( FrameCopy const &, FrameCopy const & ) = default;
};

// The lookup of one unit.
struct FrameLookup {
   U32 unit = 0;
   std::optional< U32 > rule{};  // by number, that won
   U32 classId = 0;              // 0: none

   friend auto operator<=>( FrameLookup const &, FrameLookup const & ) = default;
};

// The end of a frame's way.
struct FrameFate {
   std::optional< TextId > dropReason{};
   std::vector< FrameLookup > lookups{};
   std::vector< FrameCopy > copies{};

   friend auto operator<=>( FrameFate const &, FrameFate const & ) = default;
};

struct ListedFrame {
   U32 step = 0;
   TextId arrival = 0;  // the interface
   U32 unit = 0;
   U32 port = 0;
   U64 length = 0;
   std::optional< TextId > vtep{};  // that sent it
   std::optional< U32 > vni{};
   std::optional< TextId > kind{};
   std::optional< TextId > source{};
   std::optional< TextId > destination{};
   std::optional< U32 > vlan{};
   U32 fate = 0;                        // by number
   std::optional< U32 > explanation{};  // the number of its tree
   bool isTwice = false;                // it arrives twice somewhere
};

class FrameList {
 public:
   // The first frames of the run are listed, this many.
   explicit FrameList( std::size_t mostFrames ) : mostFrames_( mostFrames ) {}

   bool isFull() const { return frames_.size() == mostFrames_; }
   // The explanation of the frame that comes next.
   void explanationIs( U32 tree, bool isTwice );
   void add( Chip::FrameStory const & frame, U32 step, RuleHistory const & rules, Texts & texts );

   // The frame with number n + 1 in the run is at place n.
   std::vector< ListedFrame > const & frames() const { return frames_; }
   std::vector< FrameFate > const & fates() const { return fates_; }
   // Of all listed frames.
   std::size_t explained() const { return explained_; }

 private:
   U32 numberOf( FrameFate fate );

   std::size_t mostFrames_;
   std::vector< ListedFrame > frames_;
   std::vector< FrameFate > fates_;
   std::map< FrameFate, U32 > fateNumbers_;
   std::optional< U32 > nextTree_;
   bool isNextTwice_ = false;
   std::size_t explained_ = 0;
};

}  // namespace Report
