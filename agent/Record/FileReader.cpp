#include <Record/File.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include <zstd.h>

#include <Record/Header.h>
#include <Story/InputError.h>

#include <fcntl.h>

namespace Record {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuseToRead( fs::path const & file, std::string const & why ) {
   throw Story::InputError( file.string() + ": " + why +
                            "; name a file that 'vornal run --record' has written" );
}

// Does not wait for a pipe.
Process::Descriptor opened( fs::path const & file ) {
   return Process::Descriptor( open( file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK ) );
}

// The beginning of a zstd frame with a checksum: its magic number, and a bit of the next byte.
constexpr std::size_t kFrameBegin = 5;
bool isBlock( std::string_view bytes ) {
   constexpr std::string_view kMagic = "\x28\xb5\x2f\xfd";
   constexpr unsigned kChecksum = 4;
   return bytes.starts_with( kMagic ) &&
          ( static_cast< U8 >( bytes[ kMagic.size() ] ) & kChecksum ) != 0;
}

}  // namespace

bool isRecord( fs::path const & file ) {
   Process::Descriptor const descriptor = opened( file );
   std::string bytes;
   while ( bytes.size() < kHeaderSize && descriptor.isOpen() && descriptor.readInto( bytes ) ) {
   }
   return isHeader( bytes );
}

void FileReader::Free::operator()( ZSTD_DCtx_s * context ) const {
   ZSTD_freeDCtx( context );
}

FileReader::FileReader( fs::path file )
      : file_( std::move( file ) ), descriptor_( opened( file_ ) ), context_( ZSTD_createDCtx() ) {
   if ( !descriptor_.isOpen() ) {
      refuseToRead( file_,
                    std::string( "the file cannot be read (" ) + std::strerror( errno ) + ")" );
   }
   ZSTD_DCtx_setParameter( context_.get(), ZSTD_d_windowLogMax, kWindowLog );
   checkHeader();
}

void FileReader::checkHeader() {
   if ( !isAtLeast( kHeaderSize ) || !isHeader( buffer_ ) ) {
      refuseToRead( file_, "this is no record of a run" );
   }
   if ( !buffer_.starts_with( headerNow() ) ) {
      throw Story::InputError( file_.string() +
                               ": this is the record of another version of the program; read it "
                               "with that version, or record the run again" );
   }
   used_ = kHeaderSize;
   offset_ = kHeaderSize;
}

// Reads until the buffer holds so many unused bytes; false when the file ends before.
bool FileReader::isAtLeast( std::size_t size ) {
   while ( buffer_.size() - used_ < size ) {
      buffer_.erase( 0, std::exchange( used_, 0 ) );
      if ( !descriptor_.readInto( buffer_ ) ) {
         return false;
      }
   }
   return true;
}

std::optional< std::string > FileReader::next() {
   if ( !damage_.empty() ) {
      return std::nullopt;
   }
   offset_ += std::exchange( blockSize_, 0 );
   if ( !isAtLeast( 1 ) ) {
      return std::nullopt;
   }
   if ( !isAtLeast( kFrameBegin ) ) {
      damage_ = "the file ends in a block";
   } else if ( !isBlock( std::string_view( buffer_ ).substr( used_ ) ) ) {
      damage_ = "no block begins here";
   }
   std::string block;
   if ( !damage_.empty() || !decompressInto( block ) ) {
      return std::nullopt;
   }
   return block;
}

// False when the block is damaged.
bool FileReader::decompressInto( std::string & block ) {
   std::size_t const room = ZSTD_DStreamOutSize();
   ZSTD_DCtx_reset( context_.get(), ZSTD_reset_session_only );
   for ( std::size_t left = 1; left != 0; ) {
      if ( !isAtLeast( 1 ) ) {
         damage_ = "the file ends in a block";
         return false;
      }
      std::size_t const size = block.size();
      block.resize( size + room );
      ZSTD_inBuffer in{ buffer_.data() + used_, buffer_.size() - used_, 0 };
      ZSTD_outBuffer out{ block.data() + size, room, 0 };
      left = ZSTD_decompressStream( context_.get(), &out, &in );
      block.resize( size + out.pos );
      used_ += in.pos;
      blockSize_ += in.pos;
      if ( ZSTD_isError( left ) != 0 || block.size() > kLargestBlock ) {
         damage_ = ZSTD_isError( left ) != 0 ? "the block is damaged" : "the block is too large";
         return false;
      }
   }
   return true;
}

}  // namespace Record
