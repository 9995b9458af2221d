#include <CommandLine/Conversation.h>

#include <algorithm>
#include <iostream>
#include <new>

#include <fmt/format.h>

#include <CommandLine/OutputStream.h>
#include <CommandLine/PartOfStory.h>
#include <CommandLine/Progress.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <Scenario/Characters.h>
#include <Shell/Line.h>
#include <Shell/StepGrammar.h>
#include <Story/InputError.h>
#include <Story/Wording.h>
#include <Text/Printable.h>
#include <Text/Words.h>

#include <unistd.h>

namespace CommandLine {

// --- The table of commands

struct Conversation::Known {
   ShellWord word;
   void ( Conversation::*carryOut )( std::string_view );
   bool isForAStop;  // makes sense when the plug-in has stopped the process
};

std::vector< Conversation::Known > const & Conversation::known() {
   static std::vector< Known > const all{
      { { "next", "next", "carry out the scenario's next own step" }, &Conversation::next, false },
      { { "run", "run [to STEP]", "carry out its own steps to the end, or up to one of them" },
        &Conversation::run,
        false },
      { { "show", "show WHAT ...", "show the switch, as 'vornal show' does" },
        &Conversation::show,
        false },
      { { "explain", "explain FRAME ...", "say why a frame leaves where it does" },
        &Conversation::explain,
        false },
      { { "diff", "diff [STEP [STEP]] ...",
          "what the last step changed; or all since a step; or between two steps" },
        &Conversation::diff,
        false },
      { { "verify", "verify ...", "compare the rules with the published state" },
        &Conversation::verify,
        false },
      { { "what-if", "what-if STEP", "what a step would change" }, &Conversation::whatIf, false },
      { { "undo", "undo", "go back to before the last step" }, &Conversation::undo, true },
      { { "save", "save FILE [--force]", "write what was carried out as a scenario" },
        &Conversation::save,
        true },
      { { "help", "help [WORD]", "list the commands and steps, or describe one" },
        &Conversation::help,
        true },
      { { "quit", "quit", "end the shell" }, &Conversation::quit, true },
      { { "exit", "exit", "the same as quit" }, &Conversation::quit, true }
   };
   return all;
}

std::vector< ShellWord > Conversation::words() {
   std::vector< ShellWord > all;
   for ( Known const & one : known() ) {
      all.push_back( one.word );
   }
   return all;
}

namespace {

// The steps with an expectation that did not hold.
class FailedSteps final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      std::visit( Story::Overloaded{
                     [ & ]( Story::StepBegins const & begins ) { step_ = begins.number; },
                     [ & ]( Story::ExpectationChecked const & checked ) {
                        if ( !checked.held ) {
                           all_.insert( step_ );
                        }
                     },
                     []( auto const & ) {} },
                  event );
   }

   std::set< std::size_t > const & all() const { return all_; }

 private:
   std::size_t step_ = 0;
   std::set< std::size_t > all_;
};

Shell::Ending endingOf( Story::Outcome const & outcome, FailedSteps const & failed ) {
   using Kind = Shell::Ending::Kind;
   bool const isCutShort = outcome.interrupted() || !outcome.badInput().empty();
   Kind const kind = outcome.stopped() ? Kind::stopped : isCutShort ? Kind::cutShort : Kind::over;
   bool const isJudged = outcome.stopped() && outcome.stopped()->isAsExpected;
   return { kind, outcome.step() ? outcome.step()->number : 0, failed.all(), isJudged };
}

// --- Places

std::string placeOf( int line ) {
   return fmt::format( "{}:{}: ", Shell::Session::kInput, line );
}

// An entry of several lines has places of its own.
bool startsWithPlace( std::string_view message ) {
   return message.starts_with( fmt::format( "{}:", Shell::Session::kInput ) );
}

// An open bracket takes in the lines that follow.
std::string openIn( Shell::Entry const & entry ) {
   auto const lines = std::count( entry.text.begin(), entry.text.end(), '\n' );
   return Shell::openBrackets( entry.text ) == 0 || lines == 0
             ? ""
             : fmt::format( "\na bracket is open to the end of line {}; close it",
                            entry.line + lines );
}

}  // namespace

// --- The conversation

Conversation::Conversation( std::filesystem::path const & file, Host::AgentConfig config,
                            std::chrono::milliseconds turnLimit, std::ostream & out )
      : session_( file ),
        source_{ [ this ]( AddedSteps const & added ) { return session_.scenario( added ); },
                 std::move( config ), turnLimit },
        out_( out ) {
   source_.config.scenario = file.string();
}

ScenarioRun Conversation::runOf( Scenario::Model const & scenario ) const {
   return { scenario, source_.config, {}, source_.turnLimit };
}

void Conversation::begin() {
   out_ << session_.name() << ": " << Story::counted( session_.own(), "step" )
        << "; 'help' lists what can be typed\n";
   if ( !session_.description().empty() ) {
      out_ << Text::printableLines( session_.description() ) << '\n';
   }
   play( session_.unchanged() );
}

void Conversation::carryOut( Shell::Entry const & entry ) {
   line_ = entry.line;
   try {
      if ( entry.text.find( '\0' ) != std::string::npos ) {
         throw Story::InputError( "there is a NUL character in this line; take it out" );
      }
      if ( Shell::isStep( entry.text ) && !session_.isStopped() ) {
         play( session_.typed( entry.text, entry.line ) );
      } else {
         command( entry.text );
      }
   } catch ( OutputError const & ) {
      throw;
   } catch ( std::bad_alloc const & ) {
      throw;
   } catch ( std::exception const & error ) {
      isAnyWrong_ = true;
      std::string const what = Scenario::shortened( error.what() ) + openIn( entry );
      out_.flush();
      std::cerr << Text::printableLines( startsWithPlace( what ) ? what : placeOf( line_ ) + what )
                << '\n';
   }
   out_.flush();
}

void Conversation::command( std::string_view text ) {
   std::string const name( Shell::firstWord( text ) );
   auto const found = std::find_if( known().begin(), known().end(),
                                    [ & ]( Known const & one ) { return one.word.name == name; } );
   bool const isCommand = found != known().end();
   if ( session_.isStopped() && !( isCommand && found->isForAStop ) ) {
      out_.flush();
      std::cerr << placeOf( line_ )
                << fmt::format( "the plug-in has stopped in step {}; undo goes back\n",
                                session_.done() );
      isAnyLeftOut_ = true;
   } else if ( isCommand ) {
      ( this->*found->carryOut )( Shell::behindFirstWord( text ) );
   } else {
      refuse( name );
   }
}

void Conversation::refuse( std::string const & name ) {
   std::vector< std::string_view > all = Shell::stepNames();
   for ( Known const & one : known() ) {
      all.push_back( one.word.name );
   }
   std::string_view const near = Text::nearest( name, all );
   bool const isStep = std::find( all.begin(), all.end(), name ) != all.end();
   throw Story::InputError( "no command '" + name + "'; " +
                            ( isStep         ? "the step begins with '" + name + ":'"
                              : near.empty() ? "'help' lists what can be typed"
                                             : "did you mean '" + std::string( near ) + "'?" ) );
}

void Conversation::play( Shell::Attempt const & attempt ) {
   auto const first = attempt.steps.empty() ? 0 : session_.done() + 1;
   PartOfStory part( static_cast< U32 >( first ), static_cast< U32 >( attempt.steps.size() ), out_,
                     isColoured( STDOUT_FILENO ) );
   Progress progress( std::cerr );
   FailedSteps failed;
   Story::Outcome outcome;
   std::vector< Story::Observer * > observers{ &part, &failed };
   if ( isTerminal( STDERR_FILENO ) ) {
      observers.insert( observers.begin(), &progress );
   }
   out_.flush();
   runScenario( runOf( attempt.scenario ), std::move( observers ), outcome );
   part.tellEarlyEnd();
   session_.take( attempt, endingOf( outcome, failed ) );
   if ( !outcome.badInput().empty() ) {
      throw Story::InputError( outcome.badInput() );
   }
}

Story::ExitCode Conversation::exitCode() const {
   auto const verdict = session_.verdict();
   if ( isAnyWrong_ || ( isAnyLeftOut_ && verdict != Story::ExitCode::Stopped ) ) {
      return Story::ExitCode::BadInput;
   }
   return verdict == Story::ExitCode::Held && isAnyDifference_ ? Story::ExitCode::ExpectationFailed
                                                               : verdict;
}

}  // namespace CommandLine
