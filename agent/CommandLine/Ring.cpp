#include <CommandLine/Ring.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <CommandLine/Usage.h>
#include <Quelm/Error.h>
#include <Story/InputError.h>
#include <Text/Printable.h>
#include <Trace/Ring.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;

std::vector< char > contentOf( fs::path const & file ) {
   std::error_code error;
   if ( fs::exists( file, error ) && !fs::is_regular_file( file, error ) ) {
      throw Story::InputError(
         file.string() + ": this is no regular file; name one that 'run --ring' has written" );
   }
   std::ifstream in( file, std::ios::binary );
   std::vector< char > content{ std::istreambuf_iterator< char >( in ),
                                std::istreambuf_iterator< char >() };
   if ( !in.is_open() || in.bad() ) {
      throw Story::InputError( file.string() + ": the file cannot be read (" +
                               std::strerror( errno ) +
                               "); name one that 'run --ring' has written" );
   }
   return content;
}

std::string lineOf( Trace::Ring::Decoded const & line ) {
   constexpr S64 kSecond = 1'000'000'000;
   return fmt::format( "{:>8} {:>6}.{:09} {} {}: {}{}\n", line.number, line.time / kSecond,
                       line.time % kSecond, Text::printable( line.handle ), line.level,
                       Text::printable( line.text ), line.isCut ? " ..." : "" );
}

}  // namespace

void Ring::declare( CLI::App & app ) {
   app.add_option( "FILE", file_, "The file that 'run --ring' has written" )
      ->required()
      ->type_name( "FILE" )
      ->check( problemOfName );
}

Story::ExitCode Ring::perform( std::ostream & out ) {
   std::vector< char > const content = contentOf( file_ );
   try {
      for ( auto const & line : Trace::Ring::decode( std::as_bytes( std::span( content ) ) ) ) {
         out << lineOf( line );
      }
   } catch ( Quelm::TextError const & error ) {
      throw Story::InputError( file_.string() + ": " + error.what() );
   }
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
