#include <CommandLine/ReplayInputs.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include <CommandLine/RunScenario.h>
#include <Process/Descriptor.h>
#include <Scenario/File.h>
#include <Story/InputError.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;

// Its owner alone can read it.
fs::path folderNew() {
   std::error_code error;
   std::string name = fs::temp_directory_path( error ) / "vornal-replay-XXXXXX";
   if ( error || !mkdtemp( name.data() ) ) {
      throw Story::InputError(
         "the files of the record find no room: TMPDIR, or else /tmp, is no "
         "folder that takes files (" +
         ( error ? error.message() : std::strerror( errno ) ) + ")" );
   }
   return name;
}

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
      while ( auto const item = reader.next() ) {
         if ( std::holds_alternative< Record::InputsEnd >( *item ) ) {
            return;
         }
         if ( auto const * const part = std::get_if< Record::FilePart >( &*item ) ) {
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
