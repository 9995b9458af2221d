#include <Scenario/Parts.h>

namespace Scenario {

namespace {

using Expectations = std::vector< Expectation >;

constexpr U32 kHighestLevel = 9;
constexpr U32 kHighestCount = ~U32{ 0 };

void add( Expectations & expectations, Value const & value, Expected what ) {
   Expectation & expectation = expectations.emplace_back();
   expectation.what = std::move( what );
   expectation.line = value.line;
}

// --- state

// The words of one expectation about an attribute, as far as they are there.
struct StateWords {
   AttributeAt at;
   std::vector< Expected > asked;
};

void readEquals( Reading & reading, Value const & value, StateWords & words ) {
   words.asked.emplace_back(
      AttributeEquals{ words.at, stringOf( reading, value ).value_or( "" ) } );
}

template< bool isPresent >
void readPresence( Reading & reading, Value const & value, StateWords & words ) {
   AttributeAt at = words.at;
   at.key = stringOf( reading, value ).value_or( "" );
   if ( !words.at.key.empty() ) {
      reading.problem( value.line, "'key' says the same as '" + value.name + "'; leave 'key' out" );
   }
   words.asked.emplace_back( AttributeHas{ std::move( at ), isPresent } );
}

Table< StateWords > const & stateTable() {
   static Table< StateWords > const table =
      attributeTable< StateWords >( "state", { { { "equals", "" }, readEquals },
                                               { { "has", "" }, readPresence< true > },
                                               { { "lacks", "" }, readPresence< false > } } );
   return table;
}

void readState( Reading & reading, Value const & value, Expectations & expectations ) {
   StateWords words;
   readMapping( reading, value, stateTable(), words );
   if ( words.asked.size() == 1 ) {
      add( expectations, value, std::move( words.asked.front() ) );
   } else if ( value.node.IsMap() ) {
      reading.problem( value.line, "state has " + std::to_string( words.asked.size() ) +
                                      " of the words 'equals', 'has' and 'lacks'; give one" );
   }
}

// --- plug-in

Choices< bool > const & plugInStates() {
   static Choices< bool > const choices{ "plug-in", { { "ready", true }, { "waiting", false } } };
   return choices;
}

void readPlugIn( Reading & reading, Value const & value, Expectations & expectations ) {
   PluginReady const plugIn{ choiceOf( reading, value, plugInStates() ).value_or( true ) };
   add( expectations, value, plugIn );
}

void readTcamGroups( Reading & reading, Value const & value, Expectations & expectations ) {
   TcamGroupsAskedFor asked;
   for ( Value const & element : listOf( reading, value ) ) {
      if ( auto const group = choiceOf( reading, element, tcamGroups() ) ) {
         asked.groups.push_back( *group );
      }
   }
   add( expectations, value, std::move( asked ) );
}

// --- log and trace

Table< LogLine > const & logTable() {
   static Table< LogLine > const table{
      "log",
      { { { "text", "text: MULTIHOMING_TCAM_RESOURCE_FULL" }, readText< LogLine, &LogLine::text > },
        { { "times", "" }, readNumber< LogLine, &LogLine::times, 0, kHighestCount > } }
   };
   return table;
}

// A text alone, or a mapping.
void readLog( Reading & reading, Value const & value, Expectations & expectations ) {
   LogLine line;
   if ( value.node.IsScalar() ) {
      readText< LogLine, &LogLine::text >( reading, value, line );
   } else {
      readMapping( reading, value, logTable(), line );
   }
   add( expectations, value, std::move( line ) );
}

void readLevel( Reading & reading, Value const & value, TraceLine & line ) {
   if ( auto const level = numberOf( reading, value, 0, kHighestLevel ) ) {
      line.level = static_cast< int >( *level );
   }
}

Table< TraceLine > const & traceTable() {
   static Table< TraceLine > const table{
      "trace",
      { { { "handle", "handle: VornalEvpnSm" }, readText< TraceLine, &TraceLine::handle > },
        { { "level", "" }, readLevel },
        { { "text", "text: is ready" }, readText< TraceLine, &TraceLine::text > },
        { { "times", "" }, readNumber< TraceLine, &TraceLine::times, 0, kHighestCount > } }
   };
   return table;
}

void readTraceLine( Reading & reading, Value const & value, Expectations & expectations ) {
   TraceLine line;
   readMapping( reading, value, traceTable(), line );
   if ( line.level && !line.handle.empty() && !reading.isTraced( line.handle, *line.level ) ) {
      std::string const level = std::to_string( *line.level );
      reading.problem( value.line, "level " + level + " of " + line.handle +
                                      " is not traced here; switch it on, as in 'trace: { " +
                                      line.handle + ": 0-" + level + " }'" );
   }
   add( expectations, value, std::move( line ) );
}

void readRulesWord( Reading & reading, Value const & value, Expectations & expectations ) {
   RulesLike rules;
   readRules( reading, value, rules );
   add( expectations, value, std::move( rules ) );
}

void readFramesWord( Reading & reading, Value const & value, Expectations & expectations ) {
   FramesLike frames;
   readFramesLike( reading, value, frames );
   add( expectations, value, std::move( frames ) );
}

// --- audit

Choices< bool > const & auditVerdicts() {
   static Choices< bool > const choices{ "audit",
                                         { { "in-step", true }, { "differences", false } } };
   return choices;
}

Choices< Story::DifferenceKind > const & differenceKinds() {
   static Choices< Story::DifferenceKind > const choices = [] {
      Choices< Story::DifferenceKind > kinds{ "kind", {} };
      for ( Story::DifferenceRow const & row : Story::differenceRows() ) {
         kinds.all.push_back( { row.name, row.kind } );
      }
      return kinds;
   }();
   return choices;
}

void readKind( Reading & reading, Value const & value, DifferencesLike & differences ) {
   differences.kind = choiceOf( reading, value, differenceKinds() );
}

Table< DifferencesLike > const & differencesTable() {
   static Table< DifferencesLike > const table{
      "audit-differences",
      { { { "kind", "" }, readKind },
        { { "count", "" },
          readNumber< DifferencesLike, &DifferencesLike::count, 0, kHighestCount > } }
   };
   return table;
}

// A verdict, or a mapping.
void readAudit( Reading & reading, Value const & value, Expectations & expectations ) {
   if ( value.node.IsScalar() ) {
      InStep const inStep{ choiceOf( reading, value, auditVerdicts() ).value_or( true ) };
      add( expectations, value, inStep );
      return;
   }
   DifferencesLike differences;
   readMapping( reading, value, differencesTable(), differences );
   add( expectations, value, differences );
}

// --- the words of one mapping of expectations

Table< Expectations > const & expectTable() {
   static Table< Expectations > const table{ "expect",
                                             { { { "plug-in", "" }, readPlugIn },
                                               { { "tcam-groups", "" }, readTcamGroups },
                                               { { "state", "" }, readState },
                                               { { "rules", "" }, readRulesWord },
                                               { { "frames", "" }, readFramesWord },
                                               { { "audit", "" }, readAudit },
                                               { { "log", "" }, readLog },
                                               { { "trace", "" }, readTraceLine } } };
   return table;
}

}  // namespace

// A mapping of expectations, or a list of such mappings.
void readExpect( Reading & reading, Value const & value, Expectations & expectations ) {
   if ( !value.node.IsSequence() ) {
      readAsWritten( reading, value, expectTable(), expectations );
   } else if ( isFilled( reading, value, expectTable().list() ) ) {
      for ( Value const & mapping : listOf( reading, value ) ) {
         readAsWritten( reading, mapping, expectTable(), expectations );
      }
   }
}

std::vector< WordList > expectationsVocabulary() {
   return { stateTable().list(),       plugInStates().list(),  logTable().list(),
            traceTable().list(),       auditVerdicts().list(), differenceKinds().list(),
            differencesTable().list(), expectTable().list() };
}

}  // namespace Scenario
