#include <Plugin/Mounter.h>

#include <algorithm>

#include <Kiv/Rows.h>

KIV_DEFINE( Plugin::Mounter )

namespace Plugin {

namespace {

std::vector< MounterRegistration const * > & registered() {
   static auto * const all = new std::vector< MounterRegistration const * >;
   return *all;
}

}  // namespace

MounterRegistration::MounterRegistration( std::string name, Create create )
      : name_( std::move( name ) ), create_( std::move( create ) ) {
   registered().push_back( this );
}

MounterRegistration::~MounterRegistration() {
   auto & all = registered();
   all.erase( std::find( all.begin(), all.end(), this ) );
}

std::vector< MounterRegistration const * > registeredMounters() {
   return registered();
}

}  // namespace Plugin
