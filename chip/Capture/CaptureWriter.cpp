#include <Capture/CaptureWriter.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include <Quelm/Assert.h>
#include <Quelm/Error.h>
#include <pcap/pcap.h>

#include <fcntl.h>
#include <unistd.h>

namespace Chip {

namespace {

constexpr int kLongestFrame = 262144;  // the limit that tools for captures expect

// A pcap file has 32 bits for it, and libpcap reads the highest of them as a sign.
constexpr S64 kLastSecond = 0x7fffffff;

// Of a pcap file: its own header, and that of each frame.
constexpr std::uintmax_t kFileHeader = 24;
constexpr std::uintmax_t kFrameHeader = 16;

// Opens the file, and empties it. A link under its name can be that of another user of the folder,
// and lead to a file that must not be lost.
std::FILE * opened( std::filesystem::path const & file ) {
   constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC;
   constexpr int kUsualRights = 0666;  // less those that the user takes from new files
   int const fd = open( file.c_str(), kFlags, kUsualRights );
   std::FILE * const stream = fd < 0 ? nullptr : fdopen( fd, "wb" );
   if ( !stream ) {
      int const reason = errno;
      close( fd );
      throw Quelm::Error( "capture " + file.string() + ": " +
                          ( reason == ELOOP ? "this is a symbolic link; name another folder"
                                            : std::generic_category().message( reason ) ) );
   }
   return stream;
}

}  // namespace

void CaptureWriter::Close::operator()( pcap * handle ) const {
   pcap_close( handle );
}

void CaptureWriter::Close::operator()( pcap_dumper * dumper ) const {
   pcap_dump_close( dumper );
}

CaptureWriter::CaptureWriter( std::filesystem::path file )
      : file_( std::move( file ) ),
        handle_( pcap_open_dead_with_tstamp_precision( DLT_EN10MB, kLongestFrame,
                                                       PCAP_TSTAMP_PRECISION_NANO ) ),
        dumper_( pcap_dump_fopen( handle_.get(), opened( file_ ) ) ) {
   if ( !dumper_ ) {
      throw Quelm::Error( std::string( "capture " ) + pcap_geterr( handle_.get() ) );
   }
   written_ = kFileHeader;
   flush();
}

void CaptureWriter::write( std::chrono::nanoseconds timestamp, Bytes frame ) {
   QUELM_ASSERT( dumper_ && "capture written after it failed" );
   auto const seconds = std::chrono::floor< std::chrono::seconds >( timestamp );
   if ( seconds.count() < 0 || seconds.count() > kLastSecond ) {
      throw Quelm::Error( "capture " + file_.string() + ": a frame's time is " +
                          std::to_string( seconds.count() ) +
                          " seconds after 1970; a pcap file has times of the years 1970 to 2037" );
   }
   auto const length = static_cast< bpf_u_int32 >( frame.size() );
   pcap_pkthdr header{};
   header.ts.tv_sec = seconds.count();
   header.ts.tv_usec = ( timestamp - seconds ).count();
   header.caplen = length;
   header.len = length;
   // libpcap hands the dumper on as the bytes that its reading functions pass to their callers.
   pcap_dump( reinterpret_cast< U8 * >( dumper_.get() ), &header, frame.data() );
   if ( std::ferror( pcap_dump_file( dumper_.get() ) ) != 0 ) {
      fail( errno );
   }
   written_ += kFrameHeader + length;
}

void CaptureWriter::flush() {
   QUELM_ASSERT( dumper_ && "capture flushed after it failed" );
   if ( pcap_dump_flush( dumper_.get() ) != 0 ) {
      fail( errno );
   }
   flushed_ = written_;
}

void CaptureWriter::fail( int reason ) {
   dumper_.reset();
   std::error_code notCut;  // a device has no end to cut off
   std::filesystem::resize_file( file_, flushed_, notCut );
   throw Quelm::Error( "capture " + file_.string() + ": " +
                       std::generic_category().message( reason ) +
                       "; the frames from there on are not in it" );
}

}  // namespace Chip
