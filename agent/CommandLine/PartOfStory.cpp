#include <CommandLine/PartOfStory.h>

namespace CommandLine {

// The writer hears everything, because the rules of a step are those that differ from the step
// before.
void PartOfStory::onEvent( Story::Event const & event ) {
   auto const * const begins = std::get_if< Story::StepBegins >( &event );
   if ( begins && ( begins->number == first_ || begins->number > last_ ) ) {
      part_.str( "" );
   }
   isTelling_ = begins ? begins->number >= first_ && begins->number <= last_ : isTelling_;
   writer_.onEvent( event );
   if ( isTelling_ ) {
      tell();
   }
   auto const * const ends = std::get_if< Story::StepEnds >( &event );
   if ( ends ) {
      isTelling_ = false;
   }
   if ( begins || ends ) {
      out_.flush();
   }
   isEarly_ = isEarly_ || std::holds_alternative< Story::Stopped >( event ) ||
              std::holds_alternative< Story::Interrupted >( event );
}

void PartOfStory::tellEarlyEnd() {
   if ( isEarly_ ) {
      tell();
      out_.flush();
   }
}

void PartOfStory::tell() {
   out_ << part_.str();
   part_.str( "" );
}

}  // namespace CommandLine
