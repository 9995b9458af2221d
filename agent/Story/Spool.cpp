#include <Story/Spool.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace Story {

namespace {

[[noreturn]] void fail() {
   throw std::system_error( errno, std::generic_category(),
                            "a temporary file for the frames of the document" );
}

}  // namespace

void Spool::add( std::string_view text ) {
   if ( !file_ ) {
      file_.reset( std::tmpfile() );
   }
   if ( !file_ || std::fwrite( text.data(), 1, text.size(), file_.get() ) != text.size() ) {
      fail();
   }
}

void Spool::writeTo( std::ostream & out ) const {
   if ( isEmpty() ) {
      return;
   }
   std::rewind( file_.get() );
   std::array< char, 65536 > piece{};
   while ( std::size_t const size = std::fread( piece.data(), 1, piece.size(), file_.get() ) ) {
      out.write( piece.data(), static_cast< std::streamsize >( size ) );
   }
   if ( std::ferror( file_.get() ) != 0 || std::fseek( file_.get(), 0, SEEK_END ) != 0 ) {
      fail();
   }
}

}  // namespace Story
