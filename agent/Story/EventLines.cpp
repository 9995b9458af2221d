#include <Story/EventLines.h>

#include <Story/JsonForms.h>

namespace Story {

void EventLines::onEvent( Event const & event ) {
   out_ << lineText( jsonOf( event ) );
   if ( std::holds_alternative< StepEnds >( event ) ) {
      out_.flush();
   }
}

}  // namespace Story
