#include <Process/BoundedFile.h>

#include <algorithm>

#include <Process/Descriptor.h>

#include <fcntl.h>
#include <sys/stat.h>

namespace Process {

namespace fs = std::filesystem;

// Does not wait for a pipe.
std::optional< std::string > beginningOf( fs::path const & file, std::size_t most ) {
   Descriptor const descriptor( open( file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK ) );
   struct stat about {};
   if ( !descriptor.isOpen() || fstat( descriptor.fd(), &about ) != 0 ||
        !S_ISREG( about.st_mode ) ) {
      return std::nullopt;
   }
   std::string text;
   while ( text.size() < most && descriptor.readInto( text ) ) {
   }
   text.resize( std::min( text.size(), most ) );
   return text;
}

std::optional< std::string > contentOf( fs::path const & file, std::size_t most ) {
   auto text = beginningOf( file, most + 1 );
   return text && text->size() <= most ? text : std::nullopt;
}

}  // namespace Process
