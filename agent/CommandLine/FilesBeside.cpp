#include <CommandLine/FilesBeside.h>

#include <map>
#include <set>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include <Story/InputError.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;
using Scenario::Yaml;

// The texts of the document that are paths.
std::vector< Yaml * > pathsIn( Yaml & document ) {
   std::vector< Yaml * > paths;
   if ( document.find( "features" ) ) {
      paths.push_back( &document.part( "features" ) );
   }
   if ( document.find( "steps" ) ) {
      for ( Yaml & step : document.part( "steps" ).parts ) {
         if ( step.find( "frames" ) ) {
            paths.push_back( &step.part( "frames" ).part( "capture" ) );
         }
      }
   }
   return paths;
}

void copyFile( fs::path const & source, fs::path const & target ) {
   fs::copy_file( source, target, fs::copy_options::overwrite_existing );
}

// The feature files alone: the scenario can be in the same folder.
void copyFolder( fs::path const & source, fs::path const & target ) {
   fs::create_directories( target );
   for ( fs::directory_entry const & one : fs::directory_iterator( source ) ) {
      if ( one.is_regular_file() && one.path().extension() == ".json" ) {
         copyFile( one.path(), target / one.path().filename() );
      }
   }
}

// Copies files and folders into a folder, each once and under a name of its own.
class Copies {
 public:
   explicit Copies( fs::path folder ) : folder_( std::move( folder ) ) {}

   // Returns the name in the folder.
   std::string take( fs::path const & source ) {
      auto const known = names_.find( source );
      if ( known != names_.end() ) {
         return known->second;
      }
      std::string const name = nameFor( source );
      fs::create_directories( folder_ );
      ( fs::is_directory( source ) ? copyFolder : copyFile )( source, folder_ / name );
      names_.emplace( source, name );
      return name;
   }

 private:
   // "fabric.pcap", and "2-fabric.pcap" for another file of that name.
   std::string nameFor( fs::path const & source ) {
      std::string const own = source.filename().string();
      std::string name = own;
      for ( int n = 2; !taken_.insert( name ).second; ++n ) {
         name = fmt::format( "{}-{}", n, own );
      }
      return name;
   }

   fs::path folder_;
   std::map< fs::path, std::string > names_;
   std::set< std::string > taken_;
};

// The folder for the files of a scenario in that file.
fs::path folderBeside( fs::path const & scenario ) {
   return scenario.parent_path() / ( scenario.stem().string() + "-files" );
}

}  // namespace

void FilesBeside::check() const {
   output_.check();
   if ( isOfRecord_ && output_.isNamed() ) {
      output_.checkFolder( folderBeside( output_.file() ) );
   }
}

Yaml FilesBeside::taken( Yaml document, Scenario::Root const & root ) const {
   return isOfRecord_ && output_.isNamed()
             ? withFilesBeside( std::move( document ), output_.file(), root )
             : document;
}

Yaml withFilesBeside( Yaml document, fs::path const & scenario, Scenario::Root const & root ) {
   fs::path const folder = folderBeside( scenario );
   fs::path const base = fs::absolute( scenario ).parent_path();
   std::error_code ignored;
   bool const isNew = !fs::exists( folder, ignored );
   Copies copies( folder );
   try {
      for ( Yaml * const path : pathsIn( document ) ) {
         fs::path const recorded = ( base / path->text / "" ).lexically_normal().parent_path();
         path->text = ( folder.filename() / copies.take( root.placeOf( recorded ) ) ).string();
      }
   } catch ( fs::filesystem_error const & error ) {
      if ( isNew ) {
         fs::remove_all( folder, ignored );
      }
      throw Story::InputError(
         fmt::format( "{} cannot take the files of the scenario ({}); name a "
                      "file in a folder that takes files",
                      folder.string(), error.code().message() ) );
   }
   return document;
}

std::string FilesBeside::comment( Yaml const & document ) const {
   Yaml copy = document;
   bool const stay = isOfRecord_ && !output_.isNamed() && !pathsIn( copy ).empty();
   return stay ? "# The record holds the files that it names; -o FILE writes them beside FILE.\n"
               : "";
}

}  // namespace CommandLine
