#include <CommandLine/Recording.h>

#include <fstream>
#include <set>

#include <CommandLine/Version.h>
#include <FeatureFiles/Reader.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPart = std::size_t{ 64 } * 1024;

// The files of a record, each once.
class Files {
 public:
   explicit Files( Record::Writer & record ) : record_( record ) {}

   void add( fs::path const & name, std::string_view text ) {
      if ( !isNew( name ) ) {
         return;
      }
      for ( bool isFirst = true; isFirst || !text.empty(); isFirst = false ) {
         std::string_view const part = text.substr( 0, kPart );
         record_.add( { name.string(), std::string( part ) } );
         text.remove_prefix( part.size() );
      }
   }

   // A file that cannot be read is left out. The run tells of it.
   void add( fs::path const & file ) {
      std::ifstream in( file, std::ios::binary );
      if ( !in || !isNew( file ) ) {
         return;
      }
      std::string part( kPart, '\0' );
      for ( bool isFirst = true; in; isFirst = false ) {
         in.read( part.data(), kPart );
         auto const size = static_cast< std::size_t >( in.gcount() );
         if ( size != 0 || isFirst ) {
            record_.add( { file.string(), part.substr( 0, size ) } );
         }
      }
   }

   // The plug-in asks for some of them while it runs.
   void addFeatureFiles( fs::path const & folder ) {
      record_.add( { folder.empty() ? "./" : ( folder / "" ).string(), "" } );
      std::error_code error;
      std::set< fs::path > files;
      for ( auto const & entry :
            fs::directory_iterator( folder.empty() ? fs::path( "." ) : folder, error ) ) {
         std::error_code unreadable;
         if ( entry.path().extension() == ".json" && entry.is_regular_file( unreadable ) &&
              entry.file_size( unreadable ) <= FeatureFiles::Reader::kLongest ) {
            files.insert( folder / entry.path().filename() );
         }
      }
      for ( fs::path const & file : files ) {
         add( file );
      }
   }

 private:
   bool isNew( fs::path const & name ) { return names_.insert( name.lexically_normal() ).second; }

   Record::Writer & record_;
   std::set< fs::path > names_;
};

Record::Setup wholeSetup( Record::Setup setup, Scenario::Model const & scenario ) {
   setup.program = version();
   setup.directory = fs::current_path().string();
   setup.scenario = scenario.texts.front().file.string();
   return setup;
}

// The plug-in is loaded, or the run has ended in a way that a replay can show.
bool isWorthARecord( Story::Event const & event ) {
   return std::holds_alternative< Story::PluginLoaded >( event ) ||
          std::holds_alternative< Story::Stopped >( event );
}

}  // namespace

Recording::Recording( fs::path const & file, Record::Setup setup, Scenario::Model const & scenario )
      : scenario_( scenario ), record_( file, wholeSetup( std::move( setup ), scenario ) ) {}

void Recording::onEvent( Story::Event const & event ) {
   if ( hasBegun_ ) {
      record_.onEvent( event );
      return;
   }
   before_.push_back( event );
   if ( isWorthARecord( event ) ) {
      begin();
   }
}

void Recording::begin() {
   hasBegun_ = true;
   Files files( record_ );
   for ( Scenario::SourceText const & source : scenario_.texts ) {
      files.add( source.file, source.text );
   }
   for ( fs::path const & capture : scenario_.files ) {
      files.add( capture );
   }
   files.addFeatureFiles( scenario_.featureFiles );
   record_.inputsEnd();
   for ( Story::Event const & event : before_ ) {
      record_.onEvent( event );
   }
   before_.clear();
}

}  // namespace CommandLine
