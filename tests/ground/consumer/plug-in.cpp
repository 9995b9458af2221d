// A plug-in as someone else would write it: one entity type, known to the platform by name once the
// plug-in is loaded.
#include <Kiv/Entity.h>
#include <Kiv/Rows.h>

#include <string>
#include <utility>

namespace Consumer {

class Counter : public Kiv::NamedEntity {
   KIV_ENTITY( Counter, Kiv::NamedEntity )
   KIV_VALUE( frames, U32 )

   explicit Counter( std::string name ) : NamedEntity( std::move( name ) ) {}
};

}  // namespace Consumer

KIV_DEFINE_NAMED( Consumer::Counter )
