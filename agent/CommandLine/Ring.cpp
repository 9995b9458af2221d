#include <fstream>
#include <iterator>

#include <fmt/format.h>

#include <CommandLine/Commands.h>
#include <Host/InputError.h>
#include <Quelm/Error.h>
#include <Trace/Ring.h>

namespace CommandLine {

namespace {

std::vector< char > contentOf( std::filesystem::path const & file ) {
   std::ifstream in( file, std::ios::binary );
   std::vector< char > content{ std::istreambuf_iterator< char >( in ),
                                std::istreambuf_iterator< char >() };
   if ( !in.is_open() || in.bad() ) {
      throw Host::InputError( file.string() + ": the file cannot be read" );
   }
   return content;
}

std::string lineOf( Trace::Ring::Decoded const & line ) {
   constexpr S64 kSecond = 1'000'000'000;
   return fmt::format( "{:>8} {:>6}.{:09} {} {}: {}{}\n", line.number, line.time / kSecond,
                       line.time % kSecond, line.handle, line.level, line.text,
                       line.isCut ? " ..." : "" );
}

}  // namespace

Story::ExitCode ring( RingOptions const & options, std::ostream & out ) {
   std::vector< char > const content = contentOf( options.file );
   try {
      for ( auto const & line : Trace::Ring::decode( std::as_bytes( std::span( content ) ) ) ) {
         out << lineOf( line );
      }
   } catch ( Quelm::TextError const & error ) {
      throw Host::InputError( options.file.string() + ": " + error.what() );
   }
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
