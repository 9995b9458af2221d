#include <FeatureFiles/Reader.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

namespace FeatureFiles {

namespace {

namespace fs = std::filesystem;

constexpr int kNumberTooLarge = 406;  // the library's number for it

// Reads all of the text and notes where reading stops. The library's exceptions do not always know
// the place.
class EarlyEnd final : public nlohmann::json_sax< nlohmann::json > {
 public:
   std::size_t position() const { return position_; }

   bool null() override { return true; }
   bool boolean( bool ) override { return true; }
   bool number_integer( number_integer_t ) override { return true; }
   bool number_unsigned( number_unsigned_t ) override { return true; }
   bool number_float( number_float_t, string_t const & ) override { return true; }
   bool string( string_t & ) override { return true; }
   bool binary( binary_t & ) override { return true; }
   bool start_object( std::size_t ) override { return true; }
   bool key( string_t & ) override { return true; }
   bool end_object() override { return true; }
   bool start_array( std::size_t ) override { return true; }
   bool end_array() override { return true; }
   bool parse_error( std::size_t position, std::string const &,
                     nlohmann::detail::exception const & ) override {
      position_ = position;
      return false;
   }

 private:
   std::size_t position_ = 1;
};

// The line of the character at `position`; both count from 1.
std::size_t lineAt( std::string const & text, std::size_t position ) {
   auto const end =
      text.begin() + static_cast< std::ptrdiff_t >(
                        std::min( std::max< std::size_t >( position, 1 ) - 1, text.size() ) );
   return static_cast< std::size_t >( std::count( text.begin(), end, '\n' ) ) + 1;
}

// The line at which the text stops being JSON.
std::size_t lineOfDamage( std::string const & text ) {
   EarlyEnd end;
   nlohmann::json::sax_parse( text, &end );
   return lineAt( text, end.position() );
}

std::string unreadable( std::error_code const & error ) {
   return "the file cannot be read (" + error.message() + ")";
}

// A name as JSON writes it, in single quotes.
std::string quoted( std::string const & name ) {
   std::string text = nlohmann::json( name ).dump();
   text.front() = text.back() = '\'';
   return text;
}

std::size_t lineOfMember( std::string const & text, std::string const & name ) {
   std::size_t const found = text.find( nlohmann::json( name ).dump() );
   return lineAt( text, found == std::string::npos ? 1 : found + 1 );
}

}  // namespace

std::string Damage::text() const {
   return file.string() + ( line == 0 ? "" : ':' + std::to_string( line ) ) + ": " + what;
}

Reader::Reader( fs::path directory, Report report )
      : directory_( std::move( directory ) ), report_( std::move( report ) ) {
   if ( !report_ ) {
      report_ = []( Damage const & damage ) { std::cerr << damage.text() + '\n'; };
   }
}

bool Reader::isEnabled( std::string const & name, std::string const & file, bool defaultValue ) {
   File & asked = fileNamed( file );
   asked.asked.insert( name );
   auto const toggle = asked.toggles.find( name );
   return toggle == asked.toggles.end() ? defaultValue : toggle->second;
}

std::vector< Reader::NotAskedFor > Reader::notAskedFor() const {
   std::vector< NotAskedFor > result;
   for ( auto const & [ name, file ] : files_ ) {
      for ( auto const & [ toggle, value ] : file.toggles ) {
         if ( !file.asked.contains( toggle ) ) {
            result.push_back(
               { directory_ / name, toggle, { file.asked.begin(), file.asked.end() } } );
         }
      }
   }
   return result;
}

Reader::File & Reader::fileNamed( std::string const & file ) {
   auto const known = files_.find( file );
   return known != files_.end()
             ? known->second
             : files_.try_emplace( file, File{ read( directory_ / file ) } ).first->second;
}

Reader::Toggles Reader::read( fs::path const & path ) const {
   std::error_code error;
   fs::file_status const status = fs::status( path, error );
   if ( status.type() == fs::file_type::not_found ) {
      return {};
   }
   if ( status.type() != fs::file_type::regular ) {
      reportDamage( path, 0, error ? unreadable( error ) : "this is no regular file" );
      return {};
   }
   if ( fs::file_size( path, error ) > kLongest && !error ) {
      reportDamage( path, 0, "the file is larger than 16 MiB" );
      return {};
   }
   std::ifstream in( path, std::ios::binary );
   if ( !in.is_open() ) {
      reportDamage( path, 0, unreadable( std::error_code( errno, std::generic_category() ) ) );
      return {};
   }
   std::string const text{ std::istreambuf_iterator< char >( in ),
                           std::istreambuf_iterator< char >() };
   return togglesOf( text, path );
}

Reader::Toggles Reader::togglesOf( std::string const & text, fs::path const & path ) const {
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
                          quoted( name ) + " is of type " + value.type_name() );
            return {};
         }
         toggles.emplace( name, value.get< bool >() );
      }
   } catch ( nlohmann::json::exception const & damage ) {
      reportDamage( path, lineOfDamage( text ),
                    text.empty()                   ? "the file is empty"
                    : damage.id == kNumberTooLarge ? "this number is too large"
                                                   : "this is not JSON" );
      return {};
   }
   return toggles;
}

void Reader::reportDamage( fs::path const & path, std::size_t line,
                           std::string const & what ) const {
   report_( { path, line,
              what + "; an object of booleans is expected, as in { \"SbdEvpnTcamOverrideRule\": "
                     "false }; until then its toggles have their defaults" } );
}

}  // namespace FeatureFiles
