// Texts by number, each once: the events of a run repeat the same few thousand texts.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include <Quelm/Integers.h>

namespace Report {

using TextId = U32;

class Texts {
 public:
   // The number of the text. Characters that must not be printed are written out in it
   // (Text/Printable.h).
   TextId idOf( std::string const & text );

   // By number.
   std::vector< std::string > const & all() const { return texts_; }

 private:
   std::unordered_map< std::string, TextId > ids_;
   std::vector< std::string > texts_;
};

}  // namespace Report
