// The table of scenarios that are wrong in one way each: data/wrong-scenarios.txt.
#pragma once

#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace WrongTable {

struct Wrong {
   std::string text;
   std::string said;  // of it, the whole text
};

// A block is the scenario, a line of dashes, what is said, and a line of equals signs.
inline std::vector< Wrong > all() {
   std::vector< Wrong > table;
   std::ifstream in( VORNAL_SOURCE_DIR "/tests/agent/data/wrong-scenarios.txt" );
   Wrong wrong;
   bool isSaid = false;
   for ( std::string line; std::getline( in, line ); ) {
      if ( line == "==========" ) {
         table.push_back( std::exchange( wrong, {} ) );
         isSaid = false;
      } else if ( line == "----------" ) {
         isSaid = true;
      } else {
         ( isSaid ? wrong.said : wrong.text ) += line + '\n';
      }
   }
   return table;
}

}  // namespace WrongTable
