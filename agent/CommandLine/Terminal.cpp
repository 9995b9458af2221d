#include <CommandLine/Terminal.h>

#include <cstdlib>
#include <string_view>

#include <unistd.h>

namespace CommandLine {

namespace {

std::string_view environment( char const * name ) {
   char const * const value = std::getenv( name );
   return value ? value : "";
}

}  // namespace

bool isTerminal( int fd ) {
   return isatty( fd ) == 1;
}

bool isColoured( int fd ) {
   return isTerminal( fd ) && environment( "NO_COLOR" ).empty() && environment( "TERM" ) != "dumb";
}

}  // namespace CommandLine
