// The program at a terminal, as a person uses it: keys go in, and what the screen was told comes
// out.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Support {

class AtTerminal {
 public:
   // Starts the program with `state` as the folder of its history.
   AtTerminal( std::vector< std::string > words, std::string const & state ) {
      words.insert( words.begin(), VORNAL_BINARY_DIR "/vornal" );
      std::vector< char * > argv;
      for ( std::string & word : words ) {
         argv.push_back( word.data() );
      }
      argv.push_back( nullptr );
      winsize const size{ 24, 100, 0, 0 };
      pid_ = forkpty( &terminal_, nullptr, nullptr, &size );
      if ( pid_ < 0 ) {
         throw std::runtime_error( "forkpty" );
      }
      if ( pid_ == 0 ) {
         setenv( "TERM", "vt100", 1 );
         setenv( "XDG_STATE_HOME", state.c_str(), 1 );
         setenv( "HOME", state.c_str(), 1 );
         setenv( "NO_COLOR", "1", 1 );
         for ( int const number : { SIGHUP, SIGINT, SIGTERM } ) {
            ::signal( number, SIG_DFL );
         }
         execv( argv[ 0 ], argv.data() );
         _exit( 127 );
      }
      fcntl( terminal_, F_SETFD, FD_CLOEXEC );
   }
   AtTerminal( AtTerminal const & ) = delete;
   AtTerminal & operator=( AtTerminal const & ) = delete;
   ~AtTerminal() {
      if ( pid_ != 0 ) {
         kill( pid_, SIGKILL );
         wait();
      }
      close( terminal_ );
   }

   void type( std::string const & keys ) {
      if ( write( terminal_, keys.data(), keys.size() ) != static_cast< ssize_t >( keys.size() ) ) {
         throw std::runtime_error( "nobody takes the keys" );
      }
   }
   // What comes up to this text, and with it; throws when it does not come for a long time.
   std::string until( std::string const & text ) {
      std::string seen;
      while ( true ) {
         std::size_t const at = unread_.find( text );
         if ( at != std::string::npos ) {
            seen = unread_.substr( 0, at + text.size() );
            unread_.erase( 0, at + text.size() );
            return seen;
         }
         if ( !more() ) {
            throw std::runtime_error( "'" + text + "' did not come, but:\n" + unread_ );
         }
      }
   }
   void signal( int number ) const { kill( pid_, number ); }
   // Its exit code, at its end; -1 when a signal has ended it.
   int wait() {
      while ( more() ) {
      }
      int status = 0;
      waitpid( pid_, &status, 0 );
      pid_ = 0;
      return WIFEXITED( status ) ? WEXITSTATUS( status ) : -1;
   }

 private:
   // Reads more; false when nothing comes any more.
   bool more() {
      constexpr int kLongAgo = 60'000;  // milliseconds; only a failure takes so long
      pollfd ready{ terminal_, POLLIN, 0 };
      char some[ 4096 ];
      ssize_t const size =
         poll( &ready, 1, kLongAgo ) == 1 ? read( terminal_, some, sizeof some ) : 0;
      if ( size > 0 ) {
         unread_.append( some, static_cast< std::size_t >( size ) );
      }
      return size > 0;
   }

   pid_t pid_ = 0;
   int terminal_ = -1;
   std::string unread_;
};

}  // namespace Support
