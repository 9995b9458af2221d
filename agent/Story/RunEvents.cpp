#include <Story/RunEvents.h>

#include <fmt/format.h>

#include <Story/Document.h>
#include <Story/JsonForms.h>

namespace Story {

void RunBegins::addTo( Document & document ) const {
   document[ "scenario" ] = title;
   document[ "file" ] = scenario;
}

void StepBegins::addTo( Document & document ) const {
   document.stepNew( *this );
}

void BadInput::addTo( Document & document ) const {
   document[ "error" ] = text;
}

std::string Warning::words() const {
   return "warning: " + text;
}

void Warning::addTo( Document & document ) const {
   document[ "warnings" ].push_back( document.withStep( jsonOf( *this ) ) );
}

std::string ExpectationChecked::words() const {
   return held ? fmt::format( "as expected: {}", text )
               : fmt::format( "NOT as expected: {}; {} ({})", text, found, place );
}

void ExpectationChecked::addTo( Document & document ) const {
   document.count( "expectations" );
   document.count( "expectationsFailed", held ? 0 : 1 );
   document.step()[ "expectations" ].push_back( jsonOf( *this ) );
}

}  // namespace Story
