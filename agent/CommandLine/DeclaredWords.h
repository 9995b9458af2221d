// The words of a command as they are declared, for completion and the manual page.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <CommandLine/Declared.h>

namespace CommandLine {

struct DeclaredWord {
   std::vector< std::string > names;  // "-h", "--help"; of a positional word its one name
   std::string type;                  // of its value, "FILE"; empty for a flag
   std::string purpose;               // for people; lines below the first list the choices
   std::string usual;                 // the value without the option; empty: none
   std::vector< std::string > choices;
   bool isRequired = false;
   bool isRepeated = false;
};

struct DeclaredCommand {
   std::string name;
   std::string purpose;
   std::vector< DeclaredWord > options;
   std::vector< DeclaredWord > positionals;  // in their order
   std::vector< std::string > examples;
   std::string exitCodes;
};

// Those that are not hidden, in the order of the program's help.
std::vector< DeclaredCommand > declaredCommands();

}  // namespace CommandLine
