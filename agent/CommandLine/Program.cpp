#include <CommandLine/Program.h>

#include <iostream>

#include <CommandLine/Commands.h>

namespace CommandLine {

namespace {

Story::ExitCode perform( Command const & command ) {
   return std::visit( Story::Overloaded{
                         []( RunOptions const & options ) { return run( options ); },
                         []( ShowOptions const & options ) { return show( options ); },
                         []( VerifyOptions const & options ) { return verify( options ); },
                         []( RingOptions const & options ) { return ring( options ); } },
                      command );
}

}  // namespace

int program( int argc, char const * const * argv ) {
   auto const asked = parse( argc, argv );
   if ( auto const * const done = std::get_if< Done >( &asked ) ) {
      return done->exitCode;
   }
   try {
      return static_cast< int >( perform( std::get< Command >( asked ) ) );
   } catch ( std::exception const & error ) {
      std::cerr << error.what() << '\n';
      return static_cast< int >( Story::ExitCode::BadInput );
   }
}

}  // namespace CommandLine
