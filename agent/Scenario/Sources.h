// The texts that a scenario is read from, as one: its file, and steps that come from elsewhere.
//
// Lines are counted through all of them. So a line says both the text and the place in it, and
// whoever reads a value needs to know its line only.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Scenario {

class Sources {
 public:
   struct Place {
      std::string name;
      int line;  // counts from 1
   };

   // Puts the text behind those before; returns the number of lines in front of it.
   int add( std::string name, std::string_view text );

   // Those of all texts.
   int lines() const { return lines_; }

   // The place of a line that is counted through all texts.
   Place at( int line ) const;
   // "leaf.yaml:12".
   std::string placeOf( int line ) const;

 private:
   struct Source {
      std::string name;
      int before;  // lines of the texts in front of it
   };

   std::vector< Source > sources_;
   int lines_ = 0;
};

}  // namespace Scenario
