// The past of a run, for expectations: the lines that were logged and traced and the groups that
// the plug-in asked for since the run began, and the frames that were injected last.
#pragma once

#include <string>
#include <vector>

#include <Story/Observer.h>

namespace Expectations {

class Record final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      std::visit( Story::Overloaded{
                     [ & ]( Story::Logged const & line ) { log_.push_back( line.line ); },
                     [ & ]( Story::Traced const & line ) { traces_.push_back( line ); },
                     [ & ]( Story::TcamGroupAsked const & asked ) {
                        tcamGroups_.push_back( asked.group );
                     },
                     [ & ]( Story::FramesBegin const & ) { frames_.clear(); },
                     [ & ]( Story::FrameForwarded const & frame ) { frames_.push_back( frame ); },
                     []( auto const & ) {} },
                  event );
   }

   std::vector< std::string > const & log() const { return log_; }
   std::vector< Story::Traced > const & traces() const { return traces_; }
   std::vector< U32 > const & tcamGroups() const { return tcamGroups_; }
   std::vector< Story::FrameForwarded > const & frames() const { return frames_; }

 private:
   std::vector< std::string > log_;
   std::vector< Story::Traced > traces_;
   std::vector< U32 > tcamGroups_;
   std::vector< Story::FrameForwarded > frames_;
};

}  // namespace Expectations
