#include <Scenario/Document.h>

#include <fstream>
#include <sstream>

#include <yaml-cpp/eventhandler.h>

namespace Scenario {

namespace {

[[noreturn]] void refuse( std::string const & file, int line, std::string const & message ) {
   throw ReadError( { Problem{ file, line, message } } );
}

// Takes note of where a document begins, and of nothing else.
class Beginning final : public YAML::EventHandler {
 public:
   int line() const { return line_; }

   void OnDocumentStart( YAML::Mark const & mark ) override { line_ = mark.line + 1; }
   void OnDocumentEnd() override {}
   void OnNull( YAML::Mark const &, YAML::anchor_t ) override {}
   void OnAlias( YAML::Mark const &, YAML::anchor_t ) override {}
   void OnScalar( YAML::Mark const &, std::string const &, YAML::anchor_t,
                  std::string const & ) override {}
   void OnSequenceStart( YAML::Mark const &, std::string const &, YAML::anchor_t,
                         YAML::EmitterStyle::value ) override {}
   void OnSequenceEnd() override {}
   void OnMapStart( YAML::Mark const &, std::string const &, YAML::anchor_t,
                    YAML::EmitterStyle::value ) override {}
   void OnMapEnd() override {}

 private:
   int line_ = 1;
};

// The line where something follows the first document; 0 when nothing does.
int lineAfterDocument( std::string const & text ) {
   std::istringstream in( text );
   YAML::Parser parser( in );
   Beginning beginning;
   // A stray character counts as a document of its own that never ends: two are looked for, not
   // all.
   bool const isFollowed =
      parser.HandleNextDocument( beginning ) && parser.HandleNextDocument( beginning );
   return isFollowed ? beginning.line() : 0;
}

}  // namespace

std::string textIn( std::filesystem::path const & file ) {
   std::error_code error;
   std::ifstream in( file, std::ios::binary );
   std::ostringstream text;
   if ( !std::filesystem::is_regular_file( file, error ) || !in.is_open() ||
        !( text << in.rdbuf() ) ) {
      refuse( file.string(), 1,
              "the file cannot be read or is empty; a scenario's file is expected, as in "
              "scenarios/start-up/scenario.yaml" );
   }
   return text.str();
}

Value documentIn( std::string const & text, std::string const & file ) {
   try {
      if ( int const line = lineAfterDocument( text ); line != 0 ) {
         refuse( file, line, "a second document begins here; a file holds one scenario" );
      }
      return { YAML::Load( text ), 1, "the scenario" };
   } catch ( YAML::Exception const & error ) {
      int const line = error.mark.is_null() ? 1 : error.mark.line + 1;
      refuse( file, line,
              "this is not YAML (" + error.msg +
                 "); check blanks, quotes and brackets here and above" );
   }
}

}  // namespace Scenario
