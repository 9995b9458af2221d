#include <Process/Standard.h>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace Process {

// A file is opened the wrong way round, input to be written and output to be read. It gets the
// lowest descriptor that is free, and those below are taken by then.
void standardDescriptorsAreTaken() {
   for ( int const fd : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO } ) {
      if ( fcntl( fd, F_GETFD ) < 0 && errno == EBADF ) {
         open( "/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY );
      }
   }
}

}  // namespace Process
