// One reading of a scenario: the problems found so far, and the statements of the parts that must
// agree.
//
// The functions that read the parts (Scenario/Parts.h) take a Reading. They report each value that
// they cannot read, leave it out and go on, so one reading finds every mistake. A check that
// compares parts asks judges() first: where a mistake hides one of the parts, the check is left out
// (Scenario/Doubts.h).
//
// Lines. A problem with a value names the line of its key, or its own line in a list. A person
// looks there, and an alias counts where it is used rather than anchored.
#pragma once

#include <algorithm>
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
#include <Scenario/Doubts.h>
#include <Scenario/ReadError.h>
#include <Scenario/Root.h>
#include <Scenario/Scenario.h>
#include <Scenario/Sources.h>
#include <Text/Words.h>

namespace Scenario {

using Text::knownOnes;
using Text::listed;
using Text::nearest;

// A node of the text with its line and its name for problems: the word or the name that it stands
// under. The node is const because assigning to a YAML::Node changes the text's node, not the
// variable.
struct Value {
   YAML::Node const node;
   int line;
   std::string name;
};

class Reading {
 public:
   static constexpr std::size_t kMostProblems = 1000;

   // `text` comes from a file or a pipe.
   Reading( std::string file, std::string text, Root root = {} )
         : directory_( std::filesystem::path( file ).parent_path() ),
           root_( std::move( root ) ),
           text_( std::move( text ) ) {
      sources_.add( std::move( file ), text_ );
   }

   // Begins to read one more text; its lines count behind those of the texts before. ReadError,
   // which names `name`, when it cannot be read.
   YAML::Node add( std::string const & name, std::string const & text );
   Sources const & sources() const { return sources_; }

   // The directory of the files that the text being read names.
   std::filesystem::path const & directory() const { return directory_; }
   // Where the file that the text names stands.
   std::filesystem::path fileNamed( std::filesystem::path const & name ) {
      files_.push_back( name );
      return placeOf( name );
   }
   std::vector< std::filesystem::path > const & files() const { return files_; }
   // Where the file or directory of that path stands.
   std::filesystem::path placeOf( std::filesystem::path const & name ) const {
      return root_.placeOf( name );
   }

   // The parser sets the mark of an empty key at the end of the texts behind them.
   int lineOf( YAML::Mark const & mark ) const {
      return std::min( mark.line + 1, sources_.lines() );
   }
   // The line of an empty list element, which is only a dash. The parser knows only the beginning
   // of the next node.
   int lineOfDash( YAML::Mark const & next ) const;

   // Adds a problem with a value that cannot be read. Throws ReadError with all problems so far
   // when there are kMostProblems.
   void problem( int line, std::string message );
   // Adds a problem with a value that has been read all the same.
   void objection( int line, std::string message );

   std::size_t problemsSoFar() const { return problems_.size(); }
   // Those of problem() alone.
   std::size_t unreadSoFar() const { return unread_; }

   Doubts & doubts() { return doubts_; }
   bool judges( Ground ground ) { return doubts_.judges( ground ); }

   // The interface exists on the switch at some time, with a chip port or without.
   void define( Pelk::IntfId const & intf ) { defined_.insert( intf ); }
   bool isDefined( Pelk::IntfId const & intf ) const { return defined_.contains( intf ); }
   // The scenario refers to the interface; compare() reports a problem unless the scenario defines
   // it.
   void use( Pelk::IntfId const & intf, int line ) { uses_.push_back( { intf, line } ); }

   // The switch has this unit.
   void addUnit( SwitchUnit const & unit ) { modules_[ unit.number ] = unit.module; }
   // The unit's module id; reports a problem and returns nothing if the switch has no such unit.
   std::optional< U16 > module( U16 unit, int line );

   Agreement & agreement() { return agreement_; }

   // The text trace levels that are on for the handles that `names` matches.
   void addTraceLevels( std::string const & names, U32 levels ) {
      trace_.emplace_back( names, levels );
   }
   bool isTraced( std::string_view handle, int level ) const;

   // Compares what the parts have stated; to be called when all are read.
   void compare();

   // All problems, in the order of their lines. To be called last.
   std::vector< Problem > problems();

 private:
   struct Use {
      Pelk::IntfId intf;
      int line;
   };

   void checkUses();

   std::filesystem::path directory_;
   Root root_;
   std::vector< std::filesystem::path > files_;
   std::string text_;  // of all sources
   Sources sources_;
   Agreement agreement_;
   Doubts doubts_;
   std::vector< Problem > problems_;
   std::size_t unread_ = 0;
   std::set< Pelk::IntfId > defined_;
   std::vector< Use > uses_;
   std::map< U16, U16 > modules_;  // unit to module id
   std::vector< std::pair< std::string, U32 > > trace_;
};

// The kind of a node in words: "a mapping", "a list", "text", "empty".
std::string_view kindOf( YAML::Node const & node );

}  // namespace Scenario
