// What a test changes for its whole process, given back when the test ends: the tests of a file can
// run in one process, too.
#pragma once

#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>

#include <sys/resource.h>

namespace Restored {

// A variable of the environment.
class Variable {
 public:
   Variable( char const * name, std::string const & value ) : name_( name ) {
      if ( char const * const before = std::getenv( name ) ) {
         before_ = before;
      }
      is( value );
   }
   Variable( Variable const & ) = delete;
   Variable & operator=( Variable const & ) = delete;
   ~Variable() { before_ ? is( *before_ ) : static_cast< void >( unsetenv( name_ ) ); }

   void is( std::string const & value ) const { setenv( name_, value.c_str(), 1 ); }

 private:
   char const * name_;
   std::optional< std::string > before_;
};

// A limit on the size of files, in bytes: it stands for a disk that fills up.
class RoomInFiles {
 public:
   explicit RoomInFiles( rlim_t bytes ) : handler_( std::signal( SIGXFSZ, SIG_IGN ) ) {
      getrlimit( RLIMIT_FSIZE, &before_ );
      rlimit const room{ bytes, before_.rlim_max };
      setrlimit( RLIMIT_FSIZE, &room );
   }
   RoomInFiles( RoomInFiles const & ) = delete;
   RoomInFiles & operator=( RoomInFiles const & ) = delete;
   ~RoomInFiles() {
      setrlimit( RLIMIT_FSIZE, &before_ );
      std::signal( SIGXFSZ, handler_ );
   }

 private:
   rlimit before_{};
   void ( *handler_ )( int );
};

}  // namespace Restored
