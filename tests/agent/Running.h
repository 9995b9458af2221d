// The program `vornal` while it runs, with standard streams as a test wants them.
#pragma once

#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Support {

// A pipe of the test's own, which programs do not inherit.
struct TestPipe {
   TestPipe() {
      if ( pipe2( ends.data(), O_CLOEXEC ) != 0 ) {
         throw std::system_error( errno, std::generic_category(), "pipe2" );
      }
   }
   TestPipe( TestPipe const & ) = delete;
   TestPipe & operator=( TestPipe const & ) = delete;
   ~TestPipe() {
      closeEnd( 0 );
      closeEnd( 1 );
   }

   int out() const { return ends[ 0 ]; }  // to read from
   int in() const { return ends[ 1 ]; }   // to write to
   void closeEnd( std::size_t end ) {
      if ( ends.at( end ) >= 0 ) {
         close( ends.at( end ) );
         ends.at( end ) = -1;
      }
   }
   // What comes, `step` bytes at a time, until `end` has come or nothing will come any more.
   std::string read( std::string const & end = "", std::size_t step = 1 ) const {
      std::string text;
      std::string some( step, '\0' );
      while ( end.empty() || !text.ends_with( end ) ) {
         ssize_t const size = ::read( out(), some.data(), step );
         if ( size <= 0 ) {
            break;
         }
         text.append( some, 0, static_cast< std::size_t >( size ) );
      }
      return text;
   }

   std::array< int, 2 > ends{};
};

constexpr int kClosed = -1;

class Running {
 public:
   // Descriptors for standard input, output and error.
   using Streams = std::array< int, 3 >;

   Running( std::vector< std::string > words, Streams const & streams ) {
      words.insert( words.begin(), VORNAL_BINARY_DIR "/vornal" );
      std::vector< char * > argv;
      for ( std::string & word : words ) {
         argv.push_back( word.data() );
      }
      argv.push_back( nullptr );
      posix_spawn_file_actions_t files;
      posix_spawn_file_actions_init( &files );
      for ( int fd = 0; fd < 3; ++fd ) {
         int const stream = streams.at( static_cast< std::size_t >( fd ) );
         if ( stream == kClosed ) {
            posix_spawn_file_actions_addclose( &files, fd );
         } else {
            posix_spawn_file_actions_adddup2( &files, stream, fd );
         }
      }
      // Signals as a shell's foreground has them, whoever runs the test.
      posix_spawnattr_t attributes;
      posix_spawnattr_init( &attributes );
      sigset_t usual;
      sigemptyset( &usual );
      for ( int const number : { SIGHUP, SIGINT, SIGTERM, SIGPIPE } ) {
         sigaddset( &usual, number );
      }
      posix_spawnattr_setsigdefault( &attributes, &usual );
      posix_spawnattr_setflags( &attributes, POSIX_SPAWN_SETSIGDEF );
      errno = posix_spawn( &pid_, argv[ 0 ], &files, &attributes, argv.data(), environ );
      posix_spawnattr_destroy( &attributes );
      posix_spawn_file_actions_destroy( &files );
      if ( errno != 0 ) {
         throw std::system_error( errno, std::generic_category(), words[ 0 ] );
      }
   }
   Running( Running const & ) = delete;
   Running & operator=( Running const & ) = delete;
   ~Running() {
      if ( pid_ != 0 ) {
         kill( pid_, SIGKILL );
         wait();
      }
   }

   void signal( int number ) const { kill( pid_, number ); }
   // Whether it ends within so many milliseconds.
   bool ends( int patience ) const {
      int const process = static_cast< int >( syscall( SYS_pidfd_open, pid_, 0 ) );
      pollfd ended{ process, POLLIN, 0 };
      bool const hasEnded = poll( &ended, 1, patience ) == 1;
      close( process );
      return hasEnded;
   }
   // Its exit code; -1 when a signal has ended it.
   int wait() {
      int status = 0;
      waitpid( pid_, &status, 0 );
      pid_ = 0;
      return WIFEXITED( status ) ? WEXITSTATUS( status ) : -1;
   }

 private:
   pid_t pid_ = 0;
};

}  // namespace Support
