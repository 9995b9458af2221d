// Feature toggles: switches that support staff set in a file, by name.
//
// A toggle is a boolean in a JSON feature file, as in this "VornalL3.json":
//
//    { "SbdEvpnTcamOverrideRule": false }
//
// Reading files is the agent's business; it provides the facility. Every facility keeps to this:
//
// - a toggle that the file does not name, and every toggle of a file that does not exist, has the
//   default that the caller gives;
// - a damaged file is reported once, and reads as if it did not exist.
#pragma once

#include <string>

namespace FeatureToggle {

class Facility {
 public:
   virtual ~Facility() = default;
   virtual bool isEnabled( std::string const & name, std::string const & file,
                           bool defaultValue ) = 0;
};

// The facility in use from now on; nullptr for none. It must outlive its use.
void facilityIs( Facility * facility );

// The toggle's value; the default when no facility is in use.
bool isEnabled( std::string const & name, std::string const & file, bool defaultValue );

}  // namespace FeatureToggle
