// The rules that exempt known L3 multicast of a VNI.
//
// By the state alone: while the switch has a segment, each VNI that a VRF has on a tunnel interface
// has a rule. What depends on the way:
//
// - A tunnel interface's mappings are read one by one as they change. They are not read when the
//   tunnel interface enters with mappings in it, or takes the place of another.
// - The rules are known by VNI alone, not by unit, VRF or tunnel interface.
// - A VRF that found no room waits by its name. Its tunnel interface can go meanwhile.
#pragma once

#include <map>
#include <string>

#include <Facts/Facts.h>
#include <History/Stop.h>
#include <Rules/Groups.h>

namespace Reference {

class Vnis {
 public:
   Vnis( Device const & device, Facts const & facts, Groups & groups )
         : device_( device ), facts_( facts ), groups_( groups ) {}

   // Before anything else: whether there are segments when the plug-in starts.
   void begins() { hasSegments_ = !facts_.segment.empty(); }
   // Every mapping of every tunnel interface is read.
   void readAll();
   void segmentsChange();
   // A VRF's mapping changes; 0 for none.
   void mappingChanges( std::string const & vrf, Vni before, Vni now );
   void tunnelGoes( Interface const & tunnel );
   // There may be room for those that wait.
   void lookAgain();

 private:
   void giveUp( unsigned unit, std::string const & vrf, Vni vni );
   bool take( unsigned unit, std::string const & vrf, Vni vni );

   Device const & device_;
   Facts const & facts_;
   Groups & groups_;
   bool hasSegments_ = false;
   std::map< Vni, RuleId > rules_;
   std::map< std::string, Vni > waiting_;
};

}  // namespace Reference
