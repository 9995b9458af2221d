// All subcommands.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <CommandLine/Command.h>

namespace CommandLine {

struct Row {
   std::string_view name;
   std::string_view purpose;
   std::string_view examples;  // a line each
   std::unique_ptr< Command > ( *create )();
   std::string_view exitCodes;
   bool isHidden = false;  // from the program's help: the installation uses it, people do not
};

// In the order of the program's help.
std::vector< Row > const & table();

// The row, or nullptr.
Row const * find( std::string_view name );

// Less those that are hidden.
std::vector< std::string_view > commandNames();

}  // namespace CommandLine
