#include <Story/StateEvents.h>

#include <fmt/format.h>

#include <Story/Document.h>
#include <Story/JsonForms.h>

namespace Story {

std::string PublishedChange::words() const {
   std::string const place = path + "/" + attribute + ( key.empty() ? "" : "[" + key + "]" );
   return to ? fmt::format( "writes {}: {}", place, *to ) : fmt::format( "deletes {}", place );
}

void PublishedChange::addTo( Document & document ) const {
   document.count( "publishedChanges" );
   if ( document.hasStep() && document.hasRoom( "changes" ) ) {
      document.step()[ "changes" ].push_back( jsonOf( *this ) );
   }
}

void EntityDumped::addTo( Document & document ) const {
   document.step()[ "dumps" ].push_back( jsonOf( *this ) );
}

}  // namespace Story
