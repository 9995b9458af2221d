// A question about a switch is answered by one command, and the answer fits a screen.
//
// data/questions holds for each question the command, as a person types it, and the expected answer
// as text and as JSON. Its README says how they are renewed.
#include <gtest/gtest.h>

#include <algorithm>

#include <nlohmann/json.hpp>

#include <Shell.h>

namespace {

namespace fs = std::filesystem;

fs::path const kQuestions = VORNAL_SOURCE_DIR "/tests/agent/data/questions";

Support::Ran ask( std::string const & question, std::string const & option ) {
   return Support::typed( "sh '" + ( kQuestions / ( question + ".sh" ) ).string() + "' " + option,
                          VORNAL_SOURCE_DIR, "" );
}

std::string expected( std::string const & question, std::string const & ending ) {
   return Support::contentOf( kQuestions / ( question + ending ) );
}

// The command behind the comment with the question.
std::string commandOf( std::string const & question ) {
   std::string const text = expected( question, ".sh" );
   return text.substr( text.find( '\n' ) + 1 );
}

struct Size {
   std::size_t columns = 0;
   std::size_t lines = 0;
};

Size sizeOf( std::string const & text ) {
   Size size;
   std::istringstream stream( text );
   for ( std::string line; std::getline( stream, line ); ++size.lines ) {
      size.columns = std::max( size.columns, line.size() );
   }
   return size;
}

bool fits( Size const & size, Size const & screen ) {
   // The shell's prompt takes a line.
   return size.columns <= screen.columns && size.lines < screen.lines;
}

class Question : public testing::TestWithParam< char const * > {};

TEST_P( Question, IsAnsweredByOneCommand ) {
   std::string const command = commandOf( GetParam() );
   EXPECT_EQ( Support::timesIn( command, "vornal " ), 1U ) << command;

   auto const text = ask( GetParam(), "" );
   EXPECT_LE( text.exitCode, 1 );
   EXPECT_EQ( text.out, expected( GetParam(), ".txt" ) );
   auto const json = ask( GetParam(), "--json" );
   EXPECT_EQ( json.out, expected( GetParam(), ".json" ) );
   EXPECT_TRUE( nlohmann::json::accept( json.out ) );
}

TEST_P( Question, HasAnAnswerThatFitsAScreen ) {
   Size const size = sizeOf( ask( GetParam(), "" ).out );
   EXPECT_TRUE( fits( size, { 80, 24 } ) || fits( size, { 100, 40 } ) )
      << size.lines << " lines of at most " << size.columns << " columns";
}

INSTANTIATE_TEST_SUITE_P( Of, Question,
                          testing::Values( "why-not-by-this-port", "why-twice",
                                           "which-state-caused-this-rule",
                                           "what-did-this-step-change", "what-if-this-vtep-left",
                                           "how-full-and-who-is-refused",
                                           "who-is-without-protection",
                                           "which-frames-were-kept-back", "what-differs" ),
                          []( auto const & question ) {
                             std::string name = question.param;
                             std::erase( name, '-' );
                             return name;
                          } );

TEST( Questions, AreAllAsked ) {
   std::size_t commands = 0;
   for ( auto const & entry : fs::directory_iterator( kQuestions ) ) {
      commands += entry.path().extension() == ".sh" ? 1U : 0U;
   }
   EXPECT_EQ( commands, 9U );
}

}  // namespace
