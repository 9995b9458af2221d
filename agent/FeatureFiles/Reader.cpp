#include <FeatureFiles/Reader.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>
#include <utility>

#include <nlohmann/json.hpp>

namespace FeatureFiles {

namespace {

namespace fs = std::filesystem;

// The line of the character at `position`, both from 1.
std::size_t lineAt( std::string const & text, std::size_t position ) {
   auto const end =
      text.begin() + static_cast< std::ptrdiff_t >(
                        std::min( std::max< std::size_t >( position, 1 ) - 1, text.size() ) );
   return static_cast< std::size_t >( std::count( text.begin(), end, '\n' ) ) + 1;
}

std::size_t lineOfMember( std::string const & text, std::string const & name ) {
   std::size_t const found = text.find( nlohmann::json( name ).dump() );
   return lineAt( text, found == std::string::npos ? 1 : found + 1 );
}

}  // namespace

Reader::Reader( fs::path directory, Report report )
      : directory_( std::move( directory ) ), report_( std::move( report ) ) {
   if ( !report_ ) {
      report_ = []( std::string const & line ) { std::cerr << line + '\n'; };
   }
}

bool Reader::isEnabled( std::string const & name, std::string const & file, bool defaultValue ) {
   Toggles const & toggles = togglesIn( file );
   auto const toggle = toggles.find( name );
   return toggle == toggles.end() ? defaultValue : toggle->second;
}

Reader::Toggles const & Reader::togglesIn( std::string const & file ) {
   auto const known = files_.find( file );
   return known != files_.end()
             ? known->second
             : files_.try_emplace( file, read( directory_ / file ) ).first->second;
}

Reader::Toggles Reader::read( fs::path const & path ) const {
   std::error_code error;
   if ( !fs::exists( path, error ) ) {
      return {};
   }
   std::ifstream in( path, std::ios::binary );
   std::ostringstream buffer;
   if ( !fs::is_regular_file( path, error ) || !( buffer << in.rdbuf() ) ) {
      reportDamage( path, 1, "the file cannot be read or is empty" );
      return {};
   }
   std::string const text = buffer.str();
   Toggles toggles;
   try {
      nlohmann::json const json = nlohmann::json::parse( text );
      if ( !json.is_object() ) {
         reportDamage( path, 1, std::string( "this is of type " ) + json.type_name() );
         return {};
      }
      for ( auto const & [ name, value ] : json.items() ) {
         if ( !value.is_boolean() ) {
            reportDamage( path, lineOfMember( text, name ),
                          '\'' + name + "' is of type " + value.type_name() );
            return {};
         }
         toggles.emplace( name, value.get< bool >() );
      }
   } catch ( nlohmann::json::parse_error const & damage ) {
      reportDamage( path, lineAt( text, damage.byte ), "this is not JSON" );
      return {};
   }
   return toggles;
}

void Reader::reportDamage( fs::path const & path, std::size_t line,
                           std::string const & what ) const {
   report_( path.string() + ':' + std::to_string( line ) + ": " + what +
            "; an object of booleans is expected, as in { \"SbdEvpnTcamOverrideRule\": false }; "
            "until then its toggles have their defaults" );
}

}  // namespace FeatureFiles
