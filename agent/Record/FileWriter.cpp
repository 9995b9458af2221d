#include <Record/File.h>

#include <cerrno>

#include <zstd.h>

#include <Process/SharedFolder.h>
#include <Process/WholeFile.h>
#include <Quelm/Error.h>
#include <Record/Header.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Record {

namespace {

namespace fs = std::filesystem;

// The fastest level that finds what repeats from one call to the next.
constexpr int kLevel = 1;

[[noreturn]] void refuseToWrite( fs::path const & file, std::string const & why ) {
   throw Quelm::Error( "--record: " + file.string() + " " + why +
                       "; name a new file, or the record of a run that is over" );
}

}  // namespace

void FileWriter::Free::operator()( ZSTD_CCtx_s * context ) const {
   ZSTD_freeCCtx( context );
}

FileWriter::FileWriter( fs::path file )
      : file_( std::move( file ) ), context_( ZSTD_createCCtx() ) {
   ZSTD_CCtx_setParameter( context_.get(), ZSTD_c_compressionLevel, kLevel );
   ZSTD_CCtx_setParameter( context_.get(), ZSTD_c_checksumFlag, 1 );
   ZSTD_CCtx_setParameter( context_.get(), ZSTD_c_windowLog, kWindowLog );
   open();
   take();
}

FileWriter::~FileWriter() {
   if ( isNew_ && size_ == 0 ) {
      unlink( file_.c_str() );
   }
}

// Does not wait for a pipe or a device.
void FileWriter::open() {
   int const flags = O_RDWR | O_CLOEXEC | O_NONBLOCK | Process::flagsToOpen( file_ );
   descriptor_ = Process::Descriptor( ::open( file_.c_str(), flags ) );
   if ( !descriptor_.isOpen() && errno == ENOENT ) {
      descriptor_ = Process::Descriptor( ::open( file_.c_str(), flags | O_CREAT, 0644 ) );
      isNew_ = descriptor_.isOpen();
   }
   if ( !descriptor_.isOpen() && errno == EISDIR ) {
      refuseToWrite( file_, "is no regular file" );
   }
   if ( !descriptor_.isOpen() ) {
      fail();
   }
}

// Locks the file, and looks whether it may be replaced.
void FileWriter::take() {
   struct stat about {};
   if ( fstat( descriptor_.fd(), &about ) != 0 || !S_ISREG( about.st_mode ) ) {
      refuseToWrite( file_, "is no regular file" );
   }
   if ( flock( descriptor_.fd(), LOCK_EX | LOCK_NB ) != 0 ) {
      refuseToWrite( file_, "is the record of a run that goes on" );
   }
   if ( about.st_size != 0 && !isRecord( file_ ) ) {
      refuseToWrite( file_, "holds something else" );
   }
}

void FileWriter::begin() {
   if ( ftruncate( descriptor_.fd(), 0 ) != 0 ) {
      fail();
   }
   append( headerNow() );
}

void FileWriter::add( std::string_view block ) {
   compressed_.resize( ZSTD_compressBound( block.size() ) );
   std::size_t const size = ZSTD_compress2( context_.get(), compressed_.data(), compressed_.size(),
                                            block.data(), block.size() );
   if ( ZSTD_isError( size ) != 0 ) {
      throw Quelm::Error( "--record: " + file_.string() + ": " + ZSTD_getErrorName( size ) );
   }
   if ( size_ == 0 ) {
      begin();
   }
   append( std::string_view( compressed_ ).substr( 0, size ) );
}

void FileWriter::append( std::string_view bytes ) {
   if ( !descriptor_.write( bytes ) ) {
      int const reason = errno;
      // A part of a block is of no use to a reader.
      bool const isWhole = ftruncate( descriptor_.fd(), static_cast< off_t >( size_ ) ) == 0;
      errno = isWhole ? reason : errno;
      fail();
   }
   size_ += bytes.size();
}

void FileWriter::fail() const {
   std::string const left = size_ == 0 ? "" : "; what was kept before can be read";
   throw Quelm::Error( "--record: " + Process::whyNotWritten( file_, errno ) + left );
}

}  // namespace Record
