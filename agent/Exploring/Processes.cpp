#include <Exploring/Processes.h>

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <tuple>

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Exploring {

void * sharedMemory( std::size_t size ) {
   void * const memory =
      mmap( nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0 );
   if ( memory == MAP_FAILED ) {
      throw std::bad_alloc();
   }
   return memory;
}

void sharedMemoryGoes( void * memory, std::size_t size ) {
   munmap( memory, size );
}

Output::Output() : text_( memfd_create( "output", MFD_CLOEXEC ) ) {}

void Output::redirect() const {
   Process::Descriptor const nothing( open( "/dev/null", O_WRONLY | O_CLOEXEC ) );
   dup2( nothing.fd(), STDOUT_FILENO );
   dup2( text_.fd(), STDERR_FILENO );
}

void Output::clear() const {
   std::ignore = ftruncate( text_.fd(), 0 );
   lseek( text_.fd(), 0, SEEK_SET );
}

std::string Output::text() const {
   std::string text;
   lseek( text_.fd(), 0, SEEK_SET );
   while ( text_.readInto( text ) ) {
   }
   return text;
}

Process::LastWords Output::lastWords() const {
   Process::LastWords words;
   std::istringstream lines( text() );
   for ( std::string line; std::getline( lines, line ); ) {
      words.lineNew( line );
   }
   return words;
}

int waitFor( pid_t pid ) {
   int status = 0;
   while ( waitpid( pid, &status, 0 ) < 0 && errno == EINTR ) {
   }
   return status;
}

pid_t forked() {
   pid_t const parent = getpid();
   pid_t const pid = fork();
   if ( pid < 0 ) {
      Process::throwSystemError( "cannot start a process for a sequence" );
   }
   if ( pid == 0 ) {
      signal( SIGALRM, SIG_DFL );
      prctl( PR_SET_PDEATHSIG, SIGKILL );
      if ( getppid() != parent ) {
         _exit( EXIT_FAILURE );
      }
   }
   return pid;
}

void timeIs( std::chrono::milliseconds time ) {
   constexpr long kThousand = 1000;
   itimerval const timer{ {}, { time.count() / kThousand, time.count() % kThousand * kThousand } };
   setitimer( ITIMER_REAL, &timer, nullptr );
}

int inProcess( Output const & output, std::function< void() > const & work ) {
   pid_t const pid = forked();
   if ( pid == 0 ) {
      output.redirect();
      try {
         work();
         _exit( EXIT_SUCCESS );
      } catch ( std::exception const & error ) {
         output.clear();
         std::cerr << error.what() << std::flush;
         _exit( EXIT_FAILURE );
      }
   }
   return waitFor( pid );
}

}  // namespace Exploring
