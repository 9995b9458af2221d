// One reading of a scenario: the problems found so far, and what its parts have to agree on.
//
// The functions that read the parts (Scenario/Parts.h) take a Reading. What they cannot read they
// report to it and leave out, and go on; so one reading finds everything that is wrong. In the end
// check() throws if there was a problem, and nothing that was read is used.
//
// Lines. A problem with a value is told at the line of the key it stands under, or at its own in a
// list: that is where a person looks, and where an alias is used rather than anchored.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <yaml-cpp/yaml.h>

#include <Pelk/IntfId.h>
#include <Scenario/Agreement.h>
#include <Scenario/ReadError.h>
#include <Scenario/Scenario.h>
#include <Text/Words.h>

namespace Scenario {

using Text::knownOnes;
using Text::listed;
using Text::nearest;

// A node of the text, and what problems with it need: the line, and what people know it by, which
// is the word or the name that it stands under. The node is const because assigning to a YAML::Node
// changes the text's node, not the variable.
struct Value {
   YAML::Node const node;
   int line;
   std::string name;
};

class Reading {
 public:
   static constexpr std::size_t kMostProblems = 1000;

   // Of that text, which a file or a pipe holds.
   Reading( std::string file, std::string text )
         : file_( std::move( file ) ), text_( std::move( text ) ) {}

   // Where the files are that the scenario names.
   std::filesystem::path directory() const { return std::filesystem::path( file_ ).parent_path(); }

   // The line of an element of a list with nothing in it but its dash; the parser knows only where
   // what comes next begins.
   int lineOfDash( YAML::Mark const & next ) const;

   // Beyond kMostProblems nothing more is read: ReadError with those found until then.
   void problem( int line, std::string message );

   // The interface exists on the switch, with a chip port or without, now or later.
   void define( Pelk::IntfId const & intf ) { defined_.insert( intf ); }
   // The interface is referred to; a problem in the end unless it is defined somewhere.
   void use( Pelk::IntfId const & intf, int line ) { uses_.push_back( { intf, line } ); }

   // The units of the switch.
   void unitIs( SwitchUnit const & unit ) { modules_[ unit.number ] = unit.module; }
   // The unit's module id; a problem and nothing if the switch has no such unit.
   std::optional< U16 > module( U16 unit, int line );

   Agreement & agreement() { return agreement_; }

   // The text trace levels that are on, of handles that `names` matches.
   void traceIs( std::string const & names, U32 levels ) { trace_.emplace_back( names, levels ); }
   bool isTraced( std::string_view handle, int level ) const;

   // ReadError with all problems, in the order of their lines, if there are any.
   void check();

 private:
   struct Use {
      Pelk::IntfId intf;
      int line;
   };

   [[noreturn]] void refuse();

   std::string file_;
   std::string text_;
   Agreement agreement_;
   std::vector< Problem > problems_;
   std::set< Pelk::IntfId > defined_;
   std::vector< Use > uses_;
   std::map< U16, U16 > modules_;  // unit to module id
   std::vector< std::pair< std::string, U32 > > trace_;
};

// What a node is, in words: "a mapping", "a list", "text", "empty".
std::string_view kindOf( YAML::Node const & node );

}  // namespace Scenario
