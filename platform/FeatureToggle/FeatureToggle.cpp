#include <FeatureToggle/FeatureToggle.h>

namespace FeatureToggle {

namespace {

Facility * inUse = nullptr;

}  // namespace

void facilityIs( Facility * facility ) {
   inUse = facility;
}

bool isEnabled( std::string const & name, std::string const & file, bool defaultValue ) {
   return inUse ? inUse->isEnabled( name, file, defaultValue ) : defaultValue;
}

}  // namespace FeatureToggle
