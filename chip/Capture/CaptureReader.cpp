#include <Capture/CaptureReader.h>

#include <array>

#include <Quelm/Error.h>
#include <pcap/pcap.h>

namespace Chip {

void CaptureReader::Close::operator()( pcap * handle ) const {
   pcap_close( handle );
}

CaptureReader::CaptureReader( std::filesystem::path file ) : file_( std::move( file ) ) {
   std::array< char, PCAP_ERRBUF_SIZE > reason{};
   handle_.reset( pcap_open_offline_with_tstamp_precision( file_.c_str(),
                                                           PCAP_TSTAMP_PRECISION_NANO,
                                                           reason.data() ) );
   if ( !handle_ ) {
      // libpcap names the file only when it cannot be opened.
      std::string const text = reason.data();
      throw Quelm::Error( "capture " + ( text.starts_with( file_.string() )
                                            ? text
                                            : file_.string() + ": " + text ) );
   }
   if ( int const link = pcap_datalink( handle_.get() ); link != DLT_EN10MB ) {
      char const * const name = pcap_datalink_val_to_name( link );
      throw Quelm::Error( "capture " + file_.string() + ": its frames are of link type " +
                          ( name ? name : std::to_string( link ) ) + ", not Ethernet" );
   }
}

std::optional< CapturedFrame > CaptureReader::next() {
   pcap_pkthdr * header = nullptr;
   U8 const * data = nullptr;
   int const result = pcap_next_ex( handle_.get(), &header, &data );
   if ( result == PCAP_ERROR_BREAK ) {
      return std::nullopt;
   }
   ++number_;
   if ( result != 1 ) {
      refuse( pcap_geterr( handle_.get() ) );
   }
   if ( header->caplen < header->len ) {
      refuse( "only " + std::to_string( header->caplen ) + " of its " +
              std::to_string( header->len ) + " bytes were captured; capture whole frames" );
   }
   return CapturedFrame{ number_, timeOf( *header ), Bytes( data, header->caplen ) };
}

// A pcapng capture can tell times that 64 bits of nanoseconds cannot.
std::chrono::nanoseconds CaptureReader::timeOf( pcap_pkthdr const & header ) const {
   using std::chrono::nanoseconds;
   constexpr auto kMost = std::chrono::floor< std::chrono::seconds >( nanoseconds::max() );
   constexpr auto kLeast = std::chrono::ceil< std::chrono::seconds >( nanoseconds::min() );
   if ( header.ts.tv_sec >= kMost.count() || header.ts.tv_sec <= kLeast.count() ) {
      refuse( "its time is " + std::to_string( header.ts.tv_sec ) +
              " seconds after 1970; times of the years 1678 to 2261 are read" );
   }
   // The precision asked for makes the rest nanoseconds.
   return std::chrono::seconds( header.ts.tv_sec ) + nanoseconds( header.ts.tv_usec );
}

void CaptureReader::refuse( std::string const & reason ) const {
   throw Quelm::Error( "capture " + file_.string() + ": frame " + std::to_string( number_ ) + ": " +
                       reason );
}

}  // namespace Chip
