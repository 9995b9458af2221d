#include <CommandLine/Recording.h>

#include <fstream>
#include <set>

#include <CommandLine/Version.h>
#include <FeatureFiles/Reader.h>
#include <Quelm/Error.h>
#include <Traffic/CaptureFile.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPart = std::size_t{ 64 } * 1024;

// A scenario can name any file as a capture. The text is that of libpcap.
bool isNoCapture( fs::path const & file ) {
   try {
      Traffic::openedCapture( file );
      return false;
   } catch ( Quelm::Error const & error ) {
      return std::string( error.what() ).find( ": unknown file format" ) != std::string::npos;
   }
}

// An object of booleans.
bool holdsToggles( fs::path const & folder, std::string const & name ) {
   bool isDamaged = false;
   FeatureFiles::Reader reader( folder,
                                [ & ]( FeatureFiles::Damage const & ) { isDamaged = true; } );
   reader.isEnabled( "", name, false );
   return !isDamaged;
}

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

   // Of a file that is none, the replay shall say the same as the run. The record may reach a
   // stranger, so it does not take what stands in there.
   void addCapture( fs::path const & file ) {
      if ( isNoCapture( file ) ) {
         add( file, std::string( kNoCapture ) );
      } else {
         add( file );
      }
   }

   // The plug-in asks for some of them while it runs. Files of other programs stand in the same
   // folder, and can hold secrets.
   void addFeatureFiles( fs::path const & folder ) {
      record_.add( { folder.empty() ? "./" : ( folder / "" ).string(), "" } );
      std::error_code error;
      std::set< fs::path > files;
      for ( auto const & entry :
            fs::directory_iterator( folder.empty() ? fs::path( "." ) : folder, error ) ) {
         std::error_code unreadable;
         if ( entry.path().extension() == ".json" && entry.is_regular_file( unreadable ) &&
              entry.file_size( unreadable ) <= FeatureFiles::Reader::kLongest &&
              isFeatureFile( entry ) ) {
            files.insert( folder / entry.path().filename() );
         }
      }
      for ( fs::path const & file : files ) {
         add( file );
      }
   }

 private:
   static constexpr std::string_view kNoCapture{ "\0\0\0\0", 4 };

   // A damaged one is kept as well, where it is certainly meant: the run tells of it.
   static bool isFeatureFile( fs::directory_entry const & entry ) {
      fs::path const & file = entry.path();
      return holdsToggles( file.parent_path(), file.filename().string() ) ||
             ( file.filename() == "VornalL3.json" && !entry.is_symlink() );
   }

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
      files.addCapture( capture );
   }
   files.addFeatureFiles( scenario_.featureFiles );
   record_.inputsEnd();
   for ( Story::Event const & event : before_ ) {
      record_.onEvent( event );
   }
   before_.clear();
}

}  // namespace CommandLine
