#include <CommandLine/Program.h>

#include <iostream>
#include <new>

#include <CommandLine/OutputStream.h>
#include <CommandLine/Parser.h>
#include <Process/EndWatch.h>
#include <Process/Interruption.h>
#include <Process/Standard.h>
#include <Text/Printable.h>

#include <signal.h>
#include <unistd.h>

namespace CommandLine {

namespace {

constexpr int kBadInput = static_cast< int >( Story::ExitCode::BadInput );

// The exit code after an incomplete output; an interrupted program ends as interrupted.
int exitCodeOfFailure() {
   int const signal = Process::Interruption::last();
   return signal == 0 ? kBadInput : static_cast< int >( Story::exitCodeOf( signal ) );
}

int answer( int argc, char const * const * argv, std::ostream & out ) {
   auto const asked = parse( argc, argv, out );
   auto const * const done = std::get_if< Done >( &asked );
   return done ? done->exitCode
               : static_cast< int >(
                    std::get< std::unique_ptr< Command > >( asked )->perform( out ) );
}

}  // namespace

int program( int argc, char const * const * argv ) {
   Process::standardDescriptorsAreTaken();
   // With these signals ignored, a file that grows beyond the limit of a process is an error of
   // that file, and a reader that has gone is an error of standard output. Both are reported.
   signal( SIGXFSZ, SIG_IGN );
   signal( SIGPIPE, SIG_IGN );
   Process::EndWatch const watch;
   OutputStream out( STDOUT_FILENO, "standard output" );
   try {
      int const exitCode = answer( argc, argv, out );
      out.flush();
      // Standard error is incomplete, and no output is left to report it.
      return std::cerr ? exitCode : exitCodeOfFailure();
   } catch ( std::bad_alloc const & ) {
      std::cerr
         << "there is not enough memory; allow more (ulimit -v), or play a smaller scenario\n";
      return kBadInput;
   } catch ( OutputError const & error ) {
      std::cerr << Text::printableLines( error.what() ) << '\n';
      return exitCodeOfFailure();
   } catch ( std::exception const & error ) {
      std::cerr << Text::printableLines( error.what() ) << '\n';
      return kBadInput;
   }
}

}  // namespace CommandLine
