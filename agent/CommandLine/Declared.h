// The command line with all commands declared. The parser, the help, the manual page and the
// completion of shells all read these declarations.
#pragma once

#include <memory>
#include <vector>

#include <CommandLine/Table.h>

namespace CLI {
class App;
}

namespace CommandLine {

class Declared {
 public:
   Declared();
   Declared( Declared const & ) = delete;
   Declared & operator=( Declared const & ) = delete;
   ~Declared();

   CLI::App & app() { return *app_; }

   // The commands in the order of the table; the parser takes the one that is asked for.
   std::vector< std::unique_ptr< Command > > & commands() { return commands_; }

 private:
   std::unique_ptr< CLI::App > app_;
   std::vector< std::unique_ptr< Command > > commands_;
};

}  // namespace CommandLine
