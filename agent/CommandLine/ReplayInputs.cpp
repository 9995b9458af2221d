#include <CommandLine/ReplayInputs.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <CommandLine/RunScenario.h>
#include <Process/Descriptor.h>
#include <Scenario/File.h>
#include <Story/InputError.h>
#include <Story/TemporaryFolder.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;

// Its owner alone can read it.
fs::path folderNew() {
   std::string name = Story::temporaryFolder() / "vornal-replay-XXXXXX";
   if ( !mkdtemp( name.data() ) ) {
      Story::refuseTemporaryFolder( "the files of the record", errno );
   }
   return name;
}

// What the files of a record may take. A record is compressed, so a small one could fill the disk.
class Allowance {
 public:
   explicit Allowance( fs::path const & record ) {
      std::error_code error;
      std::uintmax_t const size = fs::file_size( record, error );
      bytes_ += error ? 0 : kTimes * size;
   }

   // False when it is used up.
   bool covers( Record::FilePart const & part ) {
      if ( part.file != last_ ) {
         last_ = part.file;
         fs::path const path = last_;
         names_ += static_cast< std::size_t >( std::distance( path.begin(), path.end() ) );
      }
      taken_ += part.bytes.size();
      return taken_ <= bytes_ && names_ <= kMostNames;
   }

 private:
   static constexpr std::uintmax_t kTimes = 1000;      // frames that are all alike take less
   static constexpr std::size_t kMostNames = 100'000;  // of files and of the folders around them

   std::uintmax_t bytes_ = std::uintmax_t{ 64 } << 20U;
   std::uintmax_t taken_ = 0;
   std::size_t names_ = 0;
   std::string last_;
};

}  // namespace

ReplayInputs::ReplayInputs( Record::Reader & reader ) : folder_( folderNew() ) {
   try {
      takeAll( reader );
   } catch ( ... ) {
      std::error_code error;
      fs::remove_all( folder_, error );
      throw;
   }
}

ReplayInputs::~ReplayInputs() {
   std::error_code error;
   fs::remove_all( folder_, error );
}

// The setup comes first, once: it says where the files belong.
void ReplayInputs::takeAll( Record::Reader & reader ) {
   auto const first = reader.next();
   if ( auto const * const setup = first ? std::get_if< Record::Setup >( &*first ) : nullptr ) {
      setup_ = *setup;
      root_ = Scenario::Root( folder_, setup_.directory );
      Allowance allowance( reader.file() );
      while ( auto const item = reader.next() ) {
         if ( std::holds_alternative< Record::InputsEnd >( *item ) ) {
            return;
         }
         if ( auto const * const part = std::get_if< Record::FilePart >( &*item ) ) {
            if ( !allowance.covers( *part ) ) {
               throw Story::InputError(
                  reader.file().string() +
                  ": its files take more room than the record of a run needs, a thousand times its "
                  "own size; ask for a record that 'vornal run --record' has written" );
            }
            take( *part );
         }
      }
   }
   throw Story::InputError( reader.file().string() + ": the record ends before the run begins" +
                            reader.damageText() + "; record the run again" );
}

// A path that ends in a slash is that of a folder.
void ReplayInputs::take( Record::FilePart const & part ) const {
   fs::path const place = root_.placeOf( part.file );
   bool const isFolder = part.file.ends_with( '/' );
   fs::create_directories( isFolder ? place : place.parent_path() );
   if ( isFolder ) {
      return;
   }
   std::ofstream out( place, std::ios::binary | std::ios::app );
   if ( !out.write( part.bytes.data(), static_cast< std::streamsize >( part.bytes.size() ) )
            .flush() ) {
      Process::throwSystemError( "cannot write " + place.string() );
   }
}

Scenario::Model ReplayInputs::scenario( std::vector< Scenario::AddedStep > const & more ) const {
   std::vector< Scenario::AddedStep > added;
   for ( Record::Step const & step : setup_.added ) {
      added.push_back( { step.name, step.text } );
   }
   added.insert( added.end(), more.begin(), more.end() );
   Scenario::Model scenario =
      Steps::readScenarioText( Scenario::textIn( root_.placeOf( setup_.scenario ) ),
                               setup_.scenario, added, {}, root_ );
   if ( setup_.until ) {
      checkStep( "--until", setup_.until, scenario );
      endWith( scenario, *setup_.until );
   }
   // To those who ask, the steps of the record are the scenario.
   scenario.ownSteps = scenario.steps.size() - std::min( more.size(), scenario.steps.size() );
   return scenario;
}

Scenario::Whole ReplayInputs::whole() const {
   Scenario::Whole whole( fs::path( setup_.directory ) / setup_.scenario,
                          Scenario::textIn( root_.placeOf( setup_.scenario ) ), root_ );
   if ( setup_.until ) {
      whole.endWith( *setup_.until );
   }
   for ( Record::Step const & step : setup_.added ) {
      whole.add( step.text, setup_.directory );
   }
   if ( setup_.lastStep ) {
      whole.endWith( *setup_.lastStep );
   }
   return whole;
}

}  // namespace CommandLine
