#include <Questions/Table.h>

#include <algorithm>

namespace Questions {

std::vector< Row > const & table() {
   static std::vector< Row > const rows_{
      { "rules",
        "the rules in the chips, with the state behind each",
        { "unit", "group", "entry", "vtep", "interface", "matches", "does", "priority",
          "programmedIn", "changedIn", "because" },
        rules },
      { "segments",
        "the Ethernet segments of the switch, and the VTEPs that share them",
        { "segment", "ports", "vtep" },
        segments },
      { "vteps",
        "the remote VTEPs, and whether the rules protect the hosts from their copies",
        { "vtep", "virtualPort", "gport", "segment", "classId", "rules", "protection" },
        vteps },
      { "ports",
        "the ports, and whose frames each keeps back",
        { "unit", "port", "interface", "portChannel", "segment", "keepsBackFrom" },
        ports },
      { "tcam",
        "the use of each group on each unit",
        { "unit", "group", "capacity", "plugin", "others", "free", "most", "refused", "without" },
        tcam },
      { "class-ids",
        "the class ids that are asked for and granted",
        { "vtep", "asked", "classId", "rules" },
        classIds },
      { "macs",
        "the MAC addresses that the switch has learned",
        { "vlan", "mac", "interface", "vtep", "frame", "step" },
        macs },
      { "counters",
        "the frames that rules kept back",
        { "vtep", "interface", "unit", "port", "group", "entry", "frames" },
        counters },
      { "log", "the lines of the log, by step", { "step", "name", "line" }, log },
      { "state",
        "all that is published, all rules and records: what two switches can differ in",
        { "kind", "item", "value" },
        state }
   };
   return rows_;
}

Row const * find( std::string_view name ) {
   auto const found = std::find_if( table().begin(), table().end(),
                                    [ & ]( Row const & row ) { return row.name == name; } );
   return found == table().end() ? nullptr : &*found;
}

Story::Table answer( Row const & row, Context const & context ) {
   return { std::string( row.name ), row.columns, row.rows( context ) };
}

}  // namespace Questions
