#include <Story/Spool.h>

#include <array>
#include <cerrno>
#include <system_error>

#include <Story/TemporaryFolder.h>
#include <fcntl.h>
#include <unistd.h>

namespace Story {

namespace {

[[noreturn]] void refuseFrames() {
   refuseTemporaryFolder( "the frames of the document", errno );
}

[[noreturn]] void failToReadBack() {
   throw InputError( "the frames of the document cannot be read back from " +
                     temporaryFolder().string() + " (" + std::generic_category().message( errno ) +
                     "); name another folder in TMPDIR" );
}

}  // namespace

// A file without a name.
Spool::File Spool::fileNew() {
   std::string name = temporaryFolder() / "vornal-frames-XXXXXX";
   int const fd = mkostemp( name.data(), O_CLOEXEC );
   if ( fd < 0 ) {
      refuseFrames();
   }
   File file( fdopen( fd, "w+" ) );
   if ( !file || unlink( name.c_str() ) != 0 ) {
      refuseFrames();
   }
   return file;
}

void Spool::add( std::string_view text ) {
   if ( !file_ ) {
      file_ = fileNew();
   }
   if ( std::fwrite( text.data(), 1, text.size(), file_.get() ) != text.size() ) {
      refuseFrames();
   }
}

void Spool::flush() const {
   if ( !isEmpty() && std::fflush( file_.get() ) != 0 ) {
      refuseFrames();
   }
}

void Spool::writeTo( std::ostream & out ) const {
   if ( isEmpty() ) {
      return;
   }
   flush();
   std::rewind( file_.get() );
   std::array< char, 65536 > piece{};
   while ( std::size_t const size = std::fread( piece.data(), 1, piece.size(), file_.get() ) ) {
      out.write( piece.data(), static_cast< std::streamsize >( size ) );
   }
   if ( std::ferror( file_.get() ) != 0 || std::fseek( file_.get(), 0, SEEK_END ) != 0 ) {
      failToReadBack();
   }
}

}  // namespace Story
