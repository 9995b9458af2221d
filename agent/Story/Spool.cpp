#include <Story/Spool.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <Story/InputError.h>
#include <fcntl.h>
#include <unistd.h>

namespace Story {

namespace {

[[noreturn]] void fail( int error ) {
   throw InputError(
      "the frames of the document find no room: TMPDIR, or else /tmp, is no folder "
      "that takes them (" +
      std::generic_category().message( error ) + "); name another in TMPDIR" );
}

// A file without a name.
std::FILE * fileNew() {
   std::error_code error;
   std::string name = std::filesystem::temp_directory_path( error ) / "vornal-frames-XXXXXX";
   if ( error ) {
      fail( error.value() );
   }
   int const fd = mkostemp( name.data(), O_CLOEXEC );
   if ( fd < 0 || unlink( name.c_str() ) != 0 ) {
      fail( errno );
   }
   return fdopen( fd, "w+" );
}

}  // namespace

void Spool::add( std::string_view text ) {
   if ( !file_ ) {
      file_.reset( fileNew() );
   }
   if ( std::fwrite( text.data(), 1, text.size(), file_.get() ) != text.size() ) {
      fail( errno );
   }
}

void Spool::writeTo( std::ostream & out ) const {
   if ( isEmpty() ) {
      return;
   }
   if ( std::fflush( file_.get() ) != 0 ) {
      fail( errno );
   }
   std::rewind( file_.get() );
   std::array< char, 65536 > piece{};
   while ( std::size_t const size = std::fread( piece.data(), 1, piece.size(), file_.get() ) ) {
      out.write( piece.data(), static_cast< std::streamsize >( size ) );
   }
   if ( std::ferror( file_.get() ) != 0 || std::fseek( file_.get(), 0, SEEK_END ) != 0 ) {
      fail( errno );
   }
}

}  // namespace Story
