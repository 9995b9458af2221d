// The past of a run, for expectations: the lines that were logged and traced and the groups that
// the plug-in asked for since the run began, and the frames that were injected last; and the names
// of VTEPs.
#pragma once

#include <string>
#include <vector>

#include <Story/Observer.h>
#include <Story/VtepNames.h>

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
                     [ & ]( Story::PublishedChange const & change ) { names_.onEvent( change ); },
                     [ & ]( Story::FramesBegin const & ) { frames_.clear(); },
                     [ & ]( Story::FrameForwarded const & frame ) { frames_.push_back( frame ); },
                     []( auto const & ) {} },
                  event );
   }

   std::vector< std::string > const & log() const { return log_; }
   std::vector< Story::Traced > const & traces() const { return traces_; }
   std::vector< U32 > const & tcamGroups() const { return tcamGroups_; }
   std::vector< Story::FrameForwarded > const & frames() const { return frames_; }
   // For the numbers in rules.
   Story::VtepNames const & names() const { return names_; }

 private:
   std::vector< std::string > log_;
   std::vector< Story::Traced > traces_;
   std::vector< U32 > tcamGroups_;
   std::vector< Story::FrameForwarded > frames_;
   Story::VtepNames names_;
};

}  // namespace Expectations
