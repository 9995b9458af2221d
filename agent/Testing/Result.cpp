#include <Testing/Result.h>

#include <algorithm>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace Testing {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Failure, place, what, lines )
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE( Result, file, title, isOver, failures, expectations, seconds )

// A file name need not be UTF-8.
std::string encoded( Result const & result ) {
   return nlohmann::json( result ).dump( -1, ' ', false, nlohmann::json::error_handler_t::replace );
}

Result decoded( std::string const & line ) {
   try {
      return nlohmann::json::parse( line ).get< Result >();
   } catch ( nlohmann::json::exception const & error ) {
      throw std::runtime_error( error.what() );
   }
}

std::size_t failedIn( std::vector< Result > const & results ) {
   return static_cast< std::size_t >(
      std::count_if( results.begin(), results.end(),
                     []( Result const & one ) { return one.isFailed(); } ) );
}

}  // namespace Testing
