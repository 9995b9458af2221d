// Tells the part of a story that some of its steps make up.
#pragma once

#include <ostream>
#include <sstream>

#include <Story/HumanWriter.h>

namespace CommandLine {

class PartOfStory final : public Story::Observer {
 public:
   // Both ends included; 0 is start-up. The stream must outlive the object.
   PartOfStory( U32 first, U32 last, std::ostream & out, bool isColoured )
         : first_( first ),
           last_( last ),
           out_( out ),
           writer_( part_, Story::Style( isColoured ) ) {}

   void onEvent( Story::Event const & event ) override;

   // After the run: a run that was stopped or interrupted has told its end, whatever step that was
   // in.
   void tellEarlyEnd();

 private:
   void tell();

   U32 first_;
   U32 last_;
   std::ostream & out_;
   std::ostringstream part_;
   Story::HumanWriter writer_;
   bool isTelling_ = false;  // a step of the part goes on
   bool isEarly_ = false;
};

}  // namespace CommandLine
