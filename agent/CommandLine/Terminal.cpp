#include <CommandLine/Terminal.h>

#include <charconv>
#include <cstdlib>
#include <limits>
#include <string_view>

#include <sys/ioctl.h>
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

std::size_t widthOf( int fd ) {
   std::string_view const columns = environment( "COLUMNS" );
   std::size_t width = 0;
   std::from_chars( columns.data(), columns.data() + columns.size(), width );
   winsize size{};
   if ( width == 0 && isTerminal( fd ) && ioctl( fd, TIOCGWINSZ, &size ) == 0 ) {
      width = size.ws_col;
   }
   return width == 0 ? std::numeric_limits< std::size_t >::max() : width;
}

}  // namespace CommandLine
