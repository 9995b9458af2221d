#include <Shell/SavedScenario.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <Scenario/Whole.h>
#include <Shell/Session.h>
#include <Story/InputError.h>

#include <fcntl.h>
#include <unistd.h>

namespace Shell {

namespace {

namespace fs = std::filesystem;
using Scenario::PlacedStep;
using Scenario::Yaml;

// The steps that were carried out, in their order.
std::vector< PlacedStep > inOrder( std::vector< PlacedStep > const & own,
                                   std::vector< Done > const & done ) {
   std::vector< PlacedStep > steps;
   auto next = own.begin();
   for ( Done const & step : done ) {
      steps.push_back( step.isTyped() ? PlacedStep{ Scenario::yamlIn( step.text ), {} } : *next++ );
   }
   return steps;
}

Yaml basedOn( Scenario::Whole const & whole, fs::path const & file, Yaml const & steps ) {
   using Scenario::yamlText;
   Yaml text =
      Scenario::yamlMapping( { { "scenario", yamlText( Scenario::nameFor( file ) ) },
                               { "based-on", yamlText( Scenario::pathFrom( file, whole.base() ) ) },
                               { "variant", yamlText( whole.variant() ) } } );
   if ( !steps.parts.empty() ) {
      text.set( "steps", steps );
   }
   return text;
}

}  // namespace

std::string savedText( Original const & original, std::vector< Done > const & done,
                       fs::path const & file ) {
   Scenario::Whole const whole( original.file, original.text );
   std::size_t const base = whole.baseSteps();
   auto const firstTyped =
      std::find_if( done.begin(), done.end(), []( Done const & step ) { return step.isTyped(); } );
   bool const isBaseDone = static_cast< std::size_t >( firstTyped - done.begin() ) >= base;
   auto const steps = inOrder( whole.steps(), done );
   std::error_code error;
   bool const canName =
      fs::is_regular_file( whole.base(), error ) && !fs::equivalent( whole.base(), file, error );
   if ( !isBaseDone || !canName ) {
      return textOf( whole.document( file, steps ) );
   }
   std::vector< PlacedStep > const further( steps.begin() + static_cast< std::ptrdiff_t >( base ),
                                            steps.end() );
   return textOf( basedOn( whole, file, listOf( file, further ) ) );
}

// --- The file

namespace {

constexpr int kUsualRights = 0666;  // less those that the user takes from new files

[[noreturn]] void cannotWrite( fs::path const & file, int error ) {
   throw Story::InputError( file.string() + " cannot be written (" +
                            std::generic_category().message( error ) +
                            "); name a file in a folder that takes files" );
}

// Writes the text and puts it onto the disk; the error's number, or 0.
int write( fs::path const & file, std::string const & text ) {
   int const fd = open( file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kUsualRights );
   if ( fd < 0 ) {
      return errno;
   }
   std::size_t written = 0;
   int error = 0;
   while ( written < text.size() && error == 0 ) {
      ssize_t const count = ::write( fd, text.data() + written, text.size() - written );
      written += count > 0 ? static_cast< std::size_t >( count ) : 0;
      error = count < 0 && errno != EINTR ? errno : 0;
   }
   error = error == 0 && fsync( fd ) != 0 ? errno : error;
   close( fd );
   return error;
}

}  // namespace

void writeWhole( fs::path const & file, std::string const & text ) {
   std::error_code error;
   if ( fs::is_directory( file, error ) ) {
      cannotWrite( file, EISDIR );
   }
   fs::path const unfinished =
      file.parent_path() / ( "." + file.filename().string() + "." + std::to_string( getpid() ) );
   int number = write( unfinished, text );
   if ( number == 0 && rename( unfinished.c_str(), file.c_str() ) != 0 ) {
      number = errno;
   }
   if ( number != 0 ) {
      if ( number != EEXIST ) {
         unlink( unfinished.c_str() );
      }
      cannotWrite( file, number );
   }
}

}  // namespace Shell
