#include <Process/Standard.h>

#include <cerrno>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace Process {

// Opens a file the wrong way round: input for writing, output for reading. open() takes the lowest
// free descriptor, and the lower ones are taken by then.
void standardDescriptorsAreTaken() {
   for ( int const fd : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO } ) {
      if ( fcntl( fd, F_GETFD ) < 0 && errno == EBADF ) {
         open( "/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY );
      }
   }
}

}  // namespace Process
