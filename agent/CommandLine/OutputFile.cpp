#include <CommandLine/OutputFile.h>

#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Process/SharedFolder.h>
#include <Process/WholeFile.h>
#include <Story/InputError.h>

namespace CommandLine {

namespace fs = std::filesystem;

void OutputFile::declare( CLI::App & app ) {
   value( app, "-o,--output", file_,
          "Write the scenario into this file; by default onto standard output" )
      .type( "FILE" )
      .check( problemOfName );
   flag( app, "--force", isForced_, "Replace the file if it is there already" );
}

fs::path OutputFile::place( std::string const & name ) const {
   return isNamed() ? file_ : fs::path( name + ".yaml" );
}

void OutputFile::check() const {
   if ( isNamed() && isThereToReplace( file_ ) && !isForced_ ) {
      throw Story::InputError( file_.string() +
                               " is there already; name another file, or add --force" );
   }
}

void OutputFile::checkFolder( fs::path const & folder ) const {
   Process::refuseForeign( folder );
   std::error_code error;
   if ( fs::exists( fs::symlink_status( folder, error ) ) &&
        !( isForced_ && fs::is_directory( folder, error ) ) ) {
      throw Story::InputError( folder.string() +
                               ", for the files of the record, is there already; name another "
                               "file, or add --force" );
   }
}

void OutputFile::write( std::string const & text, std::ostream & out ) const {
   if ( isNamed() ) {
      replaceFile( file_, text );
   } else {
      out << text;
   }
}

bool isThereToReplace( fs::path const & file ) {
   Process::refuseForeign( file );
   std::error_code error;
   if ( fs::is_directory( file, error ) ) {
      throw Story::InputError( file.string() + " is a folder; name a file in it" );
   }
   if ( fs::exists( fs::symlink_status( file, error ) ) ) {
      if ( !fs::is_regular_file( file, error ) ) {
         throw Story::InputError( file.string() + " is no regular file; name another one" );
      }
      return true;
   }
   fs::path const folder = file.parent_path();
   if ( !folder.empty() && !fs::is_directory( folder, error ) ) {
      throw Story::InputError( "there is no folder " + folder.string() +
                               "; make it, or name another file" );
   }
   return false;
}

void replaceFile( fs::path const & file, std::string const & text ) {
   Process::refuseForeign( file );
   std::error_code error;
   Process::writeWhole( fs::is_symlink( file, error ) ? fs::weakly_canonical( file, error ) : file,
                        text );
}

}  // namespace CommandLine
