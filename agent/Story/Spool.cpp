#include <Story/Spool.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <Story/InputError.h>
#include <Story/TemporaryFolder.h>
#include <fcntl.h>
#include <unistd.h>

namespace Story {

namespace {

[[noreturn]] void refuseFrames( int error ) {
   refuseTemporaryFolder( "the frames of the document", error );
}

[[noreturn]] void failToReadBack( int error ) {
   throw InputError( "the frames of the document cannot be read back from " +
                     temporaryFolder().string() + " (" + std::generic_category().message( error ) +
                     "); name another folder in TMPDIR" );
}

}  // namespace

// A file without a name.
Spool::File Spool::fileNew() {
   std::string name = temporaryFolder() / "vornal-frames-XXXXXX";
   int const fd = mkostemp( name.data(), O_CLOEXEC );
   if ( fd < 0 || unlink( name.c_str() ) != 0 ) {
      refuseFrames( errno );
   }
   File file( fdopen( fd, "w+" ) );
   if ( !file ) {
      refuseFrames( errno );
   }
   return file;
}

void Spool::add( std::string_view text ) {
   if ( !file_ ) {
      file_ = fileNew();
   }
   if ( std::fwrite( text.data(), 1, text.size(), file_.get() ) != text.size() ) {
      refuseFrames( errno );
   }
}

// A text that was refused before is missing, whatever room there is by now.
void Spool::flush() const {
   if ( isEmpty() ) {
      return;
   }
   if ( std::fflush( file_.get() ) != 0 ) {
      refuseFrames( errno );
   }
   if ( std::ferror( file_.get() ) != 0 ) {
      refuseFrames( EIO );
   }
}

void Spool::writeTo( std::ostream & out ) const {
   if ( isEmpty() ) {
      return;
   }
   flush();
   std::rewind( file_.get() );
   std::array< char, 65536 > piece{};
   std::size_t size = 0;
   while ( ( size = std::fread( piece.data(), 1, piece.size(), file_.get() ) ) > 0 ) {
      out.write( piece.data(), static_cast< std::streamsize >( size ) );
   }
   int const error = errno;
   if ( std::ferror( file_.get() ) != 0 || std::fseek( file_.get(), 0, SEEK_END ) != 0 ) {
      failToReadBack( error );
   }
}

}  // namespace Story
