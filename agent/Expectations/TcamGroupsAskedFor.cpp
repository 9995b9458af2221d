#include <Expectations/TcamGroupsAskedFor.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Expectations/Evidence.h>
#include <Scenario/Shape.h>

namespace Expectations {

std::string TcamGroupsAskedFor::shape() {
   namespace Shape = Scenario::Shape;
   return Shape::listOf( Shape::of( "tcam-group" ),
                         "The groups whose entry managers the plug-in has asked for so far, in "
                         "order." );
}

void TcamGroupsAskedFor::read( Reading & reading, Value const & value ) {
   for ( Value const & element : listOf( reading, value ) ) {
      if ( auto const group = choiceOf( reading, element, Scenario::tcamGroups() ) ) {
         groups.push_back( *group );
      }
   }
}

std::string TcamGroupsAskedFor::description() const {
   std::string text;
   for ( Scenario::TcamGroup const group : groups ) {
      text += ( text.empty() ? " " : ", " ) + std::string( nameOf( group ) );
   }
   return "TCAM groups asked for:" + ( text.empty() ? " none" : text );
}

Finding TcamGroupsAskedFor::check( Evidence const & evidence ) const {
   std::vector< U32 > wanted;
   for ( Scenario::TcamGroup const group : groups ) {
      wanted.push_back( assignmentOf( group ) );
   }
   auto const & asked = evidence.record.tcamGroups();
   return { asked == wanted, asked.empty()
                                ? "it asked for none"
                                : fmt::format( "it asked for {}", fmt::join( asked, ", " ) ) };
}

}  // namespace Expectations
