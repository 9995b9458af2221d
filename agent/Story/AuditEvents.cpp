#include <Story/AuditEvents.h>

#include <Story/Document.h>
#include <Story/JsonForms.h>

namespace Story {

void Audited::addTo( Document & document ) const {
   document.step()[ "audits" ].push_back( jsonOf( *this ) );
}

}  // namespace Story
