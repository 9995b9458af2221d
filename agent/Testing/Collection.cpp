#include <Testing/Collection.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include <Process/BoundedFile.h>
#include <Story/InputError.h>

namespace Testing {

namespace {

namespace fs = std::filesystem;

// The word at the beginning of the line, with or without quotes; empty where no word of a mapping
// stands.
std::string_view wordOf( std::string_view line ) {
   std::string_view const word = line.substr( 0, line.find( ':' ) );
   constexpr std::string_view kAround = "\"' ";
   std::size_t const begin = word.find_first_not_of( kAround );
   if ( word.size() == line.size() || begin == std::string_view::npos || line[ 0 ] == ' ' ) {
      return {};
   }
   return word.substr( begin, word.find_last_not_of( kAround ) + 1 - begin );
}

// No scenario is longer.
constexpr std::size_t kLongest = std::size_t{ 16 } << 20U;

// An exploration is based on a scenario, and is none.
bool isScenario( fs::path const & file ) {
   std::istringstream text( Process::beginningOf( file, kLongest ).value_or( "" ) );
   bool hasSwitch = false;
   bool hasSteps = false;
   for ( std::string line; std::getline( text, line ); ) {
      std::string_view const word = wordOf( line );
      if ( word == "exploration" ) {
         return false;
      }
      hasSwitch = hasSwitch || word == "switch";
      hasSteps = hasSteps || word == "steps";
      if ( word == "scenario" || word == "based-on" || ( hasSwitch && hasSteps ) ) {
         return true;
      }
   }
   return false;
}

void addFrom( fs::path const & folder, std::vector< fs::path > & files ) {
   std::error_code error;
   auto entry = fs::recursive_directory_iterator( folder, error );
   for ( ; !error && entry != fs::recursive_directory_iterator(); entry.increment( error ) ) {
      if ( entry->path().filename().string().starts_with( '.' ) ) {
         entry.disable_recursion_pending();
      } else if ( std::error_code unknown; entry->path().extension() == ".yaml" &&
                                           entry->is_regular_file( unknown ) &&
                                           isScenario( entry->path() ) ) {
         files.push_back( entry->path() );
      }
   }
   if ( error ) {
      throw Story::InputError( folder.string() + " cannot be read (" + error.message() +
                               "); give a folder that can" );
   }
}

}  // namespace

std::vector< fs::path > scenariosAmong( std::vector< fs::path > const & paths ) {
   std::vector< fs::path > files;
   for ( fs::path const & path : paths ) {
      std::error_code error;
      if ( fs::is_directory( path, error ) ) {
         addFrom( path, files );
      } else if ( fs::exists( path, error ) ) {
         files.push_back( path );
      } else {
         throw Story::InputError( path.string() +
                                  " does not exist; give a scenario, or a folder with scenarios" );
      }
   }
   std::sort( files.begin(), files.end() );
   std::set< fs::path > seen;
   std::erase_if( files, [ & ]( fs::path const & file ) {
      std::error_code error;
      return !seen.insert( fs::weakly_canonical( file, error ) ).second;
   } );
   return files;
}

}  // namespace Testing
