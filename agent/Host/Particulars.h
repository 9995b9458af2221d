// Tells the particulars of a run for a report: the explanation of each frame, just before the frame
// goes through the switch, and tables of the switch after each step.
//
// The plug-in notices nothing of it, and the switch stays the same.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Host/Environment.h>
#include <Questions/Grounds.h>
#include <Traffic/FrameAsked.h>

namespace Host {

class Particulars final : public Traffic::Onlooker {
 public:
   struct What {
      std::vector< std::string > tables{};  // after each step, by the names of Questions/Table.h
      U64 frames = 0;                       // that many are explained, from the first
   };

   // The environment must outlive it.
   Particulars( What what, Environment & environment );

   void stepIsOver();

 private:
   void framesBegin() override { grounds_.reset(); }
   void look( U64 number, Traffic::ArrivingFrame const & frame ) override;

   What what_;
   Environment & environment_;
   // For all frames that come in together, since nothing changes between them.
   std::optional< Questions::Grounds > grounds_;
};

}  // namespace Host
