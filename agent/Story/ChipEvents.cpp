#include <Story/ChipEvents.h>

#include <fmt/format.h>

#include <Snapshot/RuleText.h>
#include <Story/Document.h>
#include <Story/JsonForms.h>

namespace Story {

void CallMade::addTo( Document & document ) const {
   document.count( "hardwareCalls" );
   document.count( "failedCalls", call.returnCode.value_or( 0 ) < 0 ? 1 : 0 );
   if ( document.hasRoom( "hardwareCalls" ) ) {
      document.step()[ "hardwareCalls" ].push_back( jsonOf( call ) );
   }
}

void RulesDumped::addTo( Document & document ) const {
   document.step()[ "dumps" ].push_back( jsonOf( *this ) );
}

std::string ForeignEntriesAre::words() const {
   std::string const text = fmt::format( "others hold {} of unit {}, {}",
                                         held == 1 ? "1 entry" : fmt::format( "{} entries", held ),
                                         unit, Chip::groupText( group ) );
   return held == asked ? text
                        : text + fmt::format( "; there is no room for the {} they ask for", asked );
}

void ForeignEntriesAre::addTo( Document & document ) const {
   document.step()[ "foreignEntries" ].push_back( jsonOf( *this ) );
}

void FrameForwarded::addTo( Document & document ) const {
   document.count( "frames" );
   document.step()[ "frames" ].push_back( number );
   Json json = jsonOf( *this );
   json[ "step" ] = document.step()[ "number" ];
   document.frameNew( json );
}

}  // namespace Story
