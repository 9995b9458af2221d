#include <Process/WholeFile.h>

#include <cerrno>
#include <random>
#include <system_error>

#include <fmt/format.h>

#include <Story/InputError.h>

#include <fcntl.h>
#include <unistd.h>

namespace Process {

namespace fs = std::filesystem;

namespace {

constexpr int kUsualRights = 0666;  // less those that the user takes from new files

[[noreturn]] void cannotWrite( fs::path const & file, int error ) {
   throw Story::InputError( whyNotWritten( file, error ) );
}

// A name beside the file that nobody can foresee, and so nobody can take before.
fs::path nameBeside( fs::path const & file ) {
   std::random_device random;
   return file.parent_path() /
          fmt::format( ".{}.{:08x}{:08x}", file.filename().string(), random(), random() );
}

// Writes the text and puts it onto the disk; the error's number, or 0.
int write( fs::path const & file, std::string const & text ) {
   int const fd = open( file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kUsualRights );
   if ( fd < 0 ) {
      return errno;
   }
   std::size_t written = 0;
   int error = 0;
   while ( written < text.size() && error == 0 ) {
      ssize_t const count = ::write( fd, text.data() + written, text.size() - written );
      written += count > 0 ? static_cast< std::size_t >( count ) : 0;
      error = count < 0 && errno != EINTR ? errno : 0;
   }
   error = error == 0 && fsync( fd ) != 0 ? errno : error;
   close( fd );
   return error;
}

}  // namespace

std::string whyNotWritten( fs::path const & file, int error ) {
   bool const isFull = error == ENOSPC || error == EDQUOT || error == EFBIG;
   return file.string() + " cannot be written (" + std::generic_category().message( error ) +
          "); " +
          ( isFull ? "make room, or name a file elsewhere"
                   : "name a file in a folder that takes files" );
}

void writeWhole( fs::path const & file, std::string const & text ) {
   std::error_code error;
   if ( fs::is_directory( file, error ) ) {
      cannotWrite( file, EISDIR );
   }
   fs::path const unfinished = nameBeside( file );
   int number = write( unfinished, text );
   if ( number == 0 && rename( unfinished.c_str(), file.c_str() ) != 0 ) {
      number = errno;
   }
   if ( number != 0 ) {
      if ( number != EEXIST ) {
         unlink( unfinished.c_str() );
      }
      cannotWrite( file, number );
   }
}

}  // namespace Process
