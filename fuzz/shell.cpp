// Any lines are entries of the shell, each at its place, and its words read as the same when they
// are quoted. A step that is typed is one step more, and is saved as it was typed; or it is refused
// with a place in the entry, and the session is as it was. For libFuzzer; fuzz/README.md has the
// command.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <Property.h>
#include <Shell/Entries.h>
#include <Shell/Line.h>
#include <Shell/Session.h>
#include <Shell/StepGrammar.h>
#include <Story/InputError.h>

namespace {

using Fuzz::mustHold;
using Shell::Entry;

constexpr std::size_t kMostSteps = 4;

char const * const kScenario =
   "scenario: fuzzed\n"
   "switch:\n"
   "  name: leaf1\n"
   "  variant: egress-mask\n"
   "  units: { 0: { module: 1 } }\n"
   "  interfaces: { Ethernet1: { unit: 0, port: 1 } }\n"
   "  port-channels: { Port-Channel2: [] }\n"
   "evpn:\n"
   "  segments: { Port-Channel2: [ 10.0.0.2 ] }\n"
   "  vteps: { 10.0.0.2: { virtual-port: 2 } }\n"
   "steps:\n"
   "  - ready: subagents::l2Ready\n"
   "  - withdraw: { vteps: [ 10.0.0.2 ] }\n";

std::string const kSaved = std::string( Fuzz::MemoryFile::kFolder ) + "/saved.yaml";

std::vector< std::string > linesOf( std::string_view text ) {
   std::vector< std::string > lines;
   while ( !text.empty() ) {
      lines.emplace_back( text.substr( 0, text.find( '\n' ) ) );
      text.remove_prefix( std::min( lines.back().size() + 1, text.size() ) );
      while ( lines.back().ends_with( '\r' ) ) {
         lines.back().pop_back();
      }
   }
   return lines;
}

// --- Entries

std::vector< Entry > entriesOf( std::vector< std::string > const & lines ) {
   Shell::Entries entries;
   std::vector< Entry > all;
   auto const add = [ & ]( std::vector< Entry > const & some ) {
      all.insert( all.end(), some.begin(), some.end() );
   };
   for ( std::string const & line : lines ) {
      add( entries.lineNew( line ) );
   }
   add( entries.end() );
   mustHold( !entries.isPending(), "nothing waits behind the end" );
   return all;
}

// The first dash of a step is a blank in its entry.
bool isLineOf( std::string const & typed, std::string const & inEntry ) {
   std::string bare = typed;
   if ( auto const dash = bare.find( '-' ); dash != std::string::npos && bare != inEntry ) {
      bare[ dash ] = ' ';
   }
   return bare == inEntry;
}

bool isBlank( std::string const & line ) {
   std::size_t const indent = line.find_first_not_of( " \t" );
   return indent == std::string::npos || line[ indent ] == '#' || line == "steps:";
}

// Each line is in one entry, or there is nothing to carry out in it.
void checkEntries( std::vector< std::string > const & lines,
                   std::vector< Entry > const & entries ) {
   std::size_t next = 0;
   auto const skipTo = [ & ]( std::size_t end ) {
      for ( ; next < end; ++next ) {
         mustHold( isBlank( lines[ next ] ), "a line that is typed is in an entry" );
      }
   };
   for ( Entry const & entry : entries ) {
      auto const first = static_cast< std::size_t >( entry.line ) - 1;
      mustHold( entry.line >= 1 && first >= next, "entries have their order" );
      skipTo( first );
      for ( std::string const & line : linesOf( entry.text + '\n' ) ) {
         mustHold( next < lines.size() && isLineOf( lines[ next++ ], line ),
                   "an entry has the lines that were typed: " + entry.text );
      }
   }
   skipTo( lines.size() );
}

// --- Words

std::string quoted( std::string const & word ) {
   for ( char const quote : { '\'', '"' } ) {
      if ( word.find( quote ) == std::string::npos ) {
         return quote + word + quote;
      }
   }
   return word;
}

void checkWords( std::string const & text ) {
   std::vector< std::string > words;
   try {
      words = Shell::wordsOf( text );
   } catch ( Story::InputError const & error ) {
      mustHold( !std::string_view( error.what() ).empty(), "a refusal says why" );
      return;
   }
   std::string again;
   for ( std::string const & word : words ) {
      again += quoted( word ) + ' ';
   }
   mustHold( Shell::wordsOf( again ) == words, "words read as the same in quotes: " + again );
}

// --- What may follow

// A word that may stand there is still expected when it does.
void checkExpected( std::string_view step ) {
   Shell::Expected const expected = Shell::expectedAt( step );
   mustHold( expected.begin <= step.size(), "the word that is not complete is in the step" );
   for ( std::string const & word : expected.words ) {
      std::string const bare = word.substr( 0, word.find( ':' ) );
      if ( bare.find_first_of( "[{" ) == std::string::npos ) {
         auto const then =
            Shell::expectedAt( std::string( step.substr( 0, expected.begin ) ) + bare );
         mustHold( std::find( then.words.begin(), then.words.end(), word ) != then.words.end(),
                   "a word that is complete is still expected: " + word );
      }
   }
}

// --- The session

void checkRefusal( Scenario::ReadError const & error, Entry const & entry ) {
   auto const lines = std::count( entry.text.begin(), entry.text.end(), '\n' ) + 1;
   for ( Scenario::Problem const & problem : error.problems() ) {
      bool const isInEntry = problem.file == Shell::Session::kInput && problem.line >= entry.line &&
                             problem.line < entry.line + lines;
      mustHold( isInEntry && !problem.message.empty(),
                "a refusal has a place in the entry: " + problem.text() );
   }
}

void checkSaved( Shell::Session const & session ) {
   std::string const text = session.saved( kSaved );
   Scenario::Model const saved = Steps::readScenarioText( text, kSaved, {}, session.done() );
   Scenario::Model const done = session.scenario();
   mustHold( saved.steps.size() == done.steps.size(), "what is saved has the steps:\n" + text );
   for ( std::size_t n = 0; n < done.steps.size(); ++n ) {
      mustHold( saved.steps[ n ].action->description() == done.steps[ n ].action->description(),
                "what is saved is what was typed:\n" + text );
   }
}

void type( Shell::Session & session, Entry const & entry ) {
   std::size_t const before = session.done();
   try {
      Shell::Attempt const attempt = session.typed( entry.text, entry.line );
      session.take( attempt, {} );
   } catch ( Scenario::ReadError const & error ) {
      checkRefusal( error, entry );
      mustHold( session.done() == before, "a refusal changes nothing" );
      return;
   } catch ( Story::InputError const & ) {
      mustHold( session.done() == before, "a refusal changes nothing" );
      return;
   }
   mustHold( session.done() == before + 1, "what is typed is a step" );
}

// A session without steps, and one that has begun.
Shell::Session const & sessionWith( bool hasSteps ) {
   static Fuzz::MemoryFile const file( kScenario );
   static Shell::Session const empty( file.path() );
   static Shell::Session const begun = [] {
      Shell::Session session = empty;
      session.take( session.ownUpTo( 1 ), {} );
      return session;
   }();
   return hasSteps ? begun : empty;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   auto const lines = linesOf( Fuzz::textOf( data, size ) );
   auto const entries = entriesOf( lines );
   checkEntries( lines, entries );
   Shell::Session session = sessionWith( size % 2 == 1 );
   for ( Entry const & entry : entries ) {
      checkWords( entry.text );
      checkExpected( entry.text );
      checkExpected( std::string_view( entry.text ).substr( 0, entry.text.size() / 2 ) );
      // The conversation refuses a NUL character.
      bool const isText = entry.text.find( '\0' ) == std::string::npos;
      if ( isText && Shell::isStep( entry.text ) && session.done() < kMostSteps ) {
         type( session, entry );
      }
   }
   if ( session.changes() != 0 ) {
      checkSaved( session );
   }
   return 0;
}
