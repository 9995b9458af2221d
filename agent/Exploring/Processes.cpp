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
#include <sys/wait.h>
#include <unistd.h>

namespace Exploring {

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

Process::LastWords Output::lastWords() const {
   std::string text;
   lseek( text_.fd(), 0, SEEK_SET );
   while ( text_.readInto( text ) ) {
   }
   Process::LastWords words;
   std::istringstream lines( text );
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

int inProcess( Output const & output, std::function< void() > const & work ) {
   pid_t const pid = forked();
   if ( pid == 0 ) {
      output.redirect();
      try {
         work();
         _exit( EXIT_SUCCESS );
      } catch ( std::exception const & error ) {
         std::cerr << error.what() << std::endl;
         _exit( EXIT_FAILURE );
      }
   }
   return waitFor( pid );
}

}  // namespace Exploring
