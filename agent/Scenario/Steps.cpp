#include <algorithm>
#include <iterator>

#include <Scenario/Parts.h>

namespace Scenario {

namespace {

// The words of one step, as far as they are there.
struct StepWords {
   std::vector< Action > actions;
   std::optional< Variant > onlyOn;
};

void readNote( Reading & reading, Value const & value, StepWords & words ) {
   words.actions.emplace_back( Note{ stringOf( reading, value ).value_or( "" ) } );
}

std::string digitsIn( std::string_view text ) {
   std::string digits;
   std::copy_if( text.begin(), text.end(), std::back_inserter( digits ),
                 []( char c ) { return c >= '0' && c <= '9'; } );
   return digits;
}

// Whether the text was probably meant to be that one. Points that differ in a number are different
// ones.
bool isAlmost( std::string_view text, std::string_view meant ) {
   constexpr std::size_t kMostDifferent = 3;
   auto const [ shorter, longer ] = std::minmax( { text.size(), meant.size() } );
   return text != meant && longer - shorter <= kMostDifferent && text.starts_with( "sub" ) &&
          digitsIn( text ) == digitsIn( meant ) && !nearest( text, { meant } ).empty();
}

void readReady( Reading & reading, Value const & value, StepWords & words ) {
   std::string_view const group = "subagents::";
   auto const point = stringOf( reading, value );
   if ( point && isAlmost( *point, "subagents::l2Ready" ) ) {
      reading.problem( value.line,
                       "ready is " + inQuotes( *point ) + "; did you mean 'subagents::l2Ready'?" );
   } else if ( point && point->starts_with( group ) && *point != group ) {
      words.actions.emplace_back( Ready{ point->substr( group.size() ) } );
   } else if ( point ) {
      reading.problem( value.line, "ready is " + inQuotes( *point ) +
                                      "; a sub-agent's dependency point is expected, as in "
                                      "subagents::l2Ready" );
   }
}

void readPublishStep( Reading & reading, Value const & value, StepWords & words ) {
   Publish publish;
   readPublish( reading, value, publish.changes );
   words.actions.emplace_back( std::move( publish ) );
}

void readWithdrawStep( Reading & reading, Value const & value, StepWords & words ) {
   Withdraw withdraw;
   readWithdraw( reading, value, withdraw.changes );
   words.actions.emplace_back( std::move( withdraw ) );
}

Table< Set > const & setTable() {
   static Table< Set > const table =
      attributeTable< Set >( "set", { { { "value", "" }, readText< Set, &Set::value > } } );
   return table;
}

void readSet( Reading & reading, Value const & value, StepWords & words ) {
   Set set;
   readMapping( reading, value, setTable(), set );
   words.actions.emplace_back( std::move( set ) );
}

Table< Delete > const & deleteTable() {
   static Table< Delete > const table = attributeTable< Delete >( "delete", {} );
   return table;
}

void readDelete( Reading & reading, Value const & value, StepWords & words ) {
   Delete step;
   readMapping( reading, value, deleteTable(), step );
   words.actions.emplace_back( std::move( step ) );
}

void readCallEntity( Reading & reading, Value const & value, Call & call ) {
   readPath( reading, value, call.entity );
}

void readArguments( Reading & reading, Value const & value, Call & call ) {
   for ( Value const & element : listOf( reading, value ) ) {
      call.arguments.push_back( stringOf( reading, element ).value_or( "" ) );
   }
}

Table< Call > const & callTable() {
   static Table< Call > const table{
      "call",
      { { { "entity", "entity: /shared/vornalCommon" }, readCallEntity },
        { { "operation", "operation: intfPortDel" }, readText< Call, &Call::operation > },
        { { "arguments", "" }, readArguments } }
   };
   return table;
}

void readCall( Reading & reading, Value const & value, StepWords & words ) {
   Call call;
   readMapping( reading, value, callTable(), call );
   words.actions.emplace_back( std::move( call ) );
}

Choices< bool > const & allocatorStates() {
   static Choices< bool > const choices{ "class-id-allocator",
                                         { { "paused", true }, { "serving", false } } };
   return choices;
}

void readAllocator( Reading & reading, Value const & value, StepWords & words ) {
   words.actions.emplace_back(
      ClassIdAllocator{ choiceOf( reading, value, allocatorStates() ).value_or( false ) } );
}

void readDump( Reading & reading, Value const & value, StepWords & words ) {
   Dump dump;
   if ( !value.node.IsScalar() || value.node.Scalar() != "rules" ) {
      readPath( reading, value, dump.what.emplace< StateDatabase::EntityPath >() );
   }
   words.actions.emplace_back( std::move( dump ) );
}

template< typename Step, void ( *read )( Reading &, Value const &, Step & ) >
void readStep( Reading & reading, Value const & value, StepWords & words ) {
   Step step;
   read( reading, value, step );
   words.actions.emplace_back( std::move( step ) );
}

Choices< Verify > const & verifications() {
   static Choices< Verify > const choices{
      "verify",
      { { "audit", Verify::audit }, { "plug-in", Verify::plugIn }, { "both", Verify::both } }
   };
   return choices;
}

void readVerify( Reading & reading, Value const & value, StepWords & words ) {
   words.actions.emplace_back(
      choiceOf( reading, value, verifications() ).value_or( Verify::both ) );
}

void readExpectStep( Reading & reading, Value const & value, StepWords & words ) {
   Expect expect;
   readExpect( reading, value, expect.expectations );
   words.actions.emplace_back( std::move( expect ) );
}

void readOnlyOn( Reading & reading, Value const & value, StepWords & words ) {
   words.onlyOn = choiceOf( reading, value, variants() );
}

// --- Several changes in one turn

Table< StepWords > const & turnTable() {
   static Table< StepWords > const table{ "turn",
                                          { { { "ready", "" }, readReady },
                                            { { "publish", "" }, readPublishStep },
                                            { { "withdraw", "" }, readWithdrawStep },
                                            { { "replace", "" }, readStep< Replace, readReplace > },
                                            { { "set", "" }, readSet },
                                            { { "delete", "" }, readDelete },
                                            { { "call", "" }, readCall } } };
   return table;
}

// The table above has no word for any other action.
void addPart( Action && action, int line, Turn & turn ) {
   std::visit(
      [ & ]< typename T >( T & one ) {
         if constexpr ( std::is_constructible_v< Turn::Part, T > ) {
            turn.parts.push_back( { std::move( one ), line } );
         }
      },
      action );
}

void readTurn( Reading & reading, Value const & value, Turn & turn ) {
   std::vector< Value > const elements = listOf( reading, value );
   if ( value.node.IsSequence() && elements.empty() ) {
      reading.problem( value.line, "turn is empty; give one change at least" );
   }
   for ( Value const & element : elements ) {
      StepWords words;
      readMapping( reading, element, turnTable(), words );
      if ( element.node.IsMap() && element.node.size() != 1 ) {
         reading.problem( element.line, "an element of turn changes one thing, this one " +
                                           std::to_string( element.node.size() ) +
                                           "; write an element for each" );
      }
      for ( Action & action : words.actions ) {
         addPart( std::move( action ), element.line, turn );
      }
   }
}

Table< StepWords > const & stepTable() {
   static Table< StepWords > const table{
      "step",
      { { { "note", "" }, readNote },
        { { "ready", "" }, readReady },
        { { "publish", "" }, readPublishStep },
        { { "withdraw", "" }, readWithdrawStep },
        { { "replace", "" }, readStep< Replace, readReplace > },
        { { "set", "" }, readSet },
        { { "delete", "" }, readDelete },
        { { "call", "" }, readCall },
        { { "turn", "" }, readStep< Turn, readTurn > },
        { { "frame", "" }, readStep< Frame, readFrame > },
        { { "frames", "" }, readStep< Capture, readCapture > },
        { { "designated-forwarder", "" }, readStep< DesignatedForwarder, readDesignated > },
        { { "foreign-entries", "" }, readStep< ForeignEntries, readForeignEntries > },
        { { "class-id-allocator", "" }, readAllocator },
        { { "dump", "" }, readDump },
        { { "drift", "" }, readStep< Drift, readDrift > },
        { { "fail-call", "" }, readStep< FailCall, readFailCall > },
        { { "verify", "" }, readVerify },
        { { "expect", "" }, readExpectStep },
        { { "only-on", "" }, readOnlyOn } }
   };
   return table;
}

// One word says what the step does; 'only-on' may stand beside it.
std::size_t actionWordsIn( Value const & step ) {
   std::size_t const words = step.node.size();
   return words - ( step.node[ "only-on" ] ? 1 : 0 );
}

}  // namespace

void readSteps( Reading & reading, Value const & value, std::vector< StepOf > & steps ) {
   for ( Value const & element : listOf( reading, value ) ) {
      StepWords words;
      readMapping( reading, element, stepTable(), words );
      if ( element.node.IsMap() && actionWordsIn( element ) != 1 ) {
         reading.problem( element.line, "a step does one thing, this one " +
                                           std::to_string( actionWordsIn( element ) ) +
                                           "; write a step for each" );
      }
      for ( Action & action : words.actions ) {
         steps.push_back( { { std::move( action ), element.line }, words.onlyOn } );
      }
   }
}

void readPath( Reading & reading, Value const & value, StateDatabase::EntityPath & path ) {
   auto const text = stringOf( reading, value );
   if ( !text ) {
      return;
   }
   try {
      path = StateDatabase::EntityPath::fromString( *text );
   } catch ( Quelm::TextError const & error ) {
      reading.problem( value.line,
                       pathInQuotes( *text ) + " is not the path of an entity, as in " +
                          "/evpn/status/segmentStatus[Port-Channel2]: " + error.what() );
   }
}

std::vector< WordList > stepsVocabulary() {
   return { setTable().list(),  deleteTable().list(),     callTable().list(),
            turnTable().list(), allocatorStates().list(), verifications().list(),
            stepTable().list() };
}

}  // namespace Scenario
