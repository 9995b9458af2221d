#include <CommandLine/ScenarioFile.h>

#include <Record/File.h>
#include <Steps/Reader.h>

namespace CommandLine {

// A pipe can be read once only, and holds no record.
ScenarioFile::ScenarioFile( std::filesystem::path file ) : file_( std::move( file ) ) {
   std::error_code error;
   if ( std::filesystem::is_regular_file( file_, error ) && Record::isRecord( file_ ) ) {
      record_ = std::make_shared< RecordedRun const >( file_ );
   }
}

Scenario::Model ScenarioFile::read( AddedSteps const & more ) const {
   return record_ ? record_->scenario( more ) : Steps::readScenario( file_, more );
}

Host::AgentConfig ScenarioFile::config() const {
   Host::AgentConfig config;
   config.scenario = record_ ? record_->setup().scenario : file_.string();
   config.lastStep = record_ ? record_->lastStep() : std::nullopt;
   return config;
}

}  // namespace CommandLine
