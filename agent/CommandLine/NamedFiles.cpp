#include <CommandLine/NamedFiles.h>

#include <map>

#include <FeatureFiles/Reader.h>
#include <Quelm/Error.h>
#include <Steps/Capture.h>
#include <Traffic/CaptureFile.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;

// Empty when all frames of the capture can be read.
std::string problemOf( fs::path const & capture ) {
   try {
      Traffic::framesIn( capture );
      return {};
   } catch ( Quelm::Error const & error ) {
      return error.what();
   }
}

void addCaptures( Scenario::Model const & scenario, std::vector< Scenario::Problem > & problems ) {
   std::map< fs::path, std::string > known;
   for ( Scenario::Step const & step : scenario.steps ) {
      auto const * const played = step.as< Steps::Capture >();
      std::error_code error;
      if ( !played || !fs::is_regular_file( played->file, error ) ) {
         continue;
      }
      auto const [ one, isNew ] = known.try_emplace( played->file );
      if ( isNew ) {
         one->second = problemOf( played->file );
      }
      if ( !one->second.empty() ) {
         auto const place = scenario.sources.at( step.line );
         problems.push_back( { place.name, place.line, one->second } );
      }
   }
}

// The one file that plug-in and audit ask for.
void addFeatureFiles( Scenario::Model const & scenario,
                      std::vector< Scenario::Problem > & problems ) {
   FeatureFiles::Reader reader( scenario.featureFiles, [ & ](
                                                          FeatureFiles::Damage const & damage ) {
      problems.push_back(
         { damage.file.string(), static_cast< int >( damage.line ), damage.what } );
   } );
   reader.isEnabled( "SbdEvpnTcamOverrideRule", "VornalL3.json", true );
}

}  // namespace

std::vector< Scenario::Problem > problemsOfNamedFiles( Scenario::Model const & scenario ) {
   std::vector< Scenario::Problem > problems;
   addCaptures( scenario, problems );
   addFeatureFiles( scenario, problems );
   return problems;
}

}  // namespace CommandLine
