// The word that says how many scenarios run at a time.
#pragma once

#include <cstddef>

namespace CLI {
class App;
}

namespace CommandLine {

class Jobs {
 public:
   void declare( CLI::App & app );
   // By default as many as there are cores.
   std::size_t count() const;

 private:
   std::size_t asked_ = 0;  // 0: none
};

}  // namespace CommandLine
