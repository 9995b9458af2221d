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
   // The precision asked for makes these nanoseconds.
   auto const timestamp =
      std::chrono::seconds( header->ts.tv_sec ) + std::chrono::nanoseconds( header->ts.tv_usec );
   return CapturedFrame{ number_, timestamp, Bytes( data, header->caplen ) };
}

void CaptureReader::refuse( std::string const & reason ) const {
   throw Quelm::Error( "capture " + file_.string() + ": frame " + std::to_string( number_ ) + ": " +
                       reason );
}

}  // namespace Chip
