// Commands as a person types them.
#pragma once

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>

#include <sys/wait.h>

#include <Support.h>

namespace Support {

// Runs the command by `sh` in that folder, on a terminal of so many columns, with `vornal` in the
// path. What it prints on standard error stands among its output.
inline Ran typed( std::string const & command, std::filesystem::path const & folder,
                  std::string const & columns ) {
   std::string const line =
      "cd '" + folder.string() +
      "' && PATH='" VORNAL_BINARY_DIR "':\"$PATH\" && export PATH && COLUMNS=" + columns +
      " && export COLUMNS && { " + command + "\n} 2>&1";
   FILE * const pipe = popen( line.c_str(), "r" );
   if ( !pipe ) {
      throw std::runtime_error( "popen" );
   }
   Ran ran;
   for ( int c = std::fgetc( pipe ); c != EOF; c = std::fgetc( pipe ) ) {
      ran.out += static_cast< char >( c );
   }
   int const status = pclose( pipe );
   ran.exitCode = WIFEXITED( status ) ? WEXITSTATUS( status ) : -1;
   return ran;
}

}  // namespace Support
