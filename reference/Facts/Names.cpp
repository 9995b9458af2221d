#include <Facts/Names.h>

#include <array>
#include <cctype>
#include <stdexcept>

#include <arpa/inet.h>

namespace Reference {

Interface::Interface( std::string name ) : name_( std::move( name ) ) {
   std::size_t at = 0;
   while ( at < name_.size() && !std::isdigit( static_cast< unsigned char >( name_[ at ] ) ) ) {
      kind_ += name_[ at++ ];
   }
   while ( at < name_.size() ) {
      std::size_t length = 0;
      numbers_.push_back( static_cast< unsigned >( std::stoul( name_.substr( at ), &length ) ) );
      at += length + 1;  // and the slash before the next number
   }
}

Vtep::Vtep( std::string address ) : address_( std::move( address ) ) {
   bool const isIpv4 = address_.find( ':' ) == std::string::npos;
   bytes_.resize( isIpv4 ? 4 : 16 );
   if ( inet_pton( isIpv4 ? AF_INET : AF_INET6, address_.c_str(), bytes_.data() ) != 1 ) {
      throw std::invalid_argument( "'" + address_ + "' is no IP address" );
   }
}

}  // namespace Reference
