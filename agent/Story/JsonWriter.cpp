#include <Story/JsonWriter.h>

#include <Story/JsonForms.h>

namespace Story {

namespace {

using Json = nlohmann::ordered_json;

Json emptyStep( StepBegins const & step ) {
   return { { "number", step.number },
            { "text", step.text },
            { "place", textOrNull( step.place ) },
            { "changes", Json::array() },
            { "hardwareCalls", Json::array() },
            { "rulesAdded", Json::array() },
            { "rulesChanged", Json::array() },
            { "rulesRemoved", Json::array() },
            { "log", Json::array() },
            { "traces", Json::array() },
            { "frames", Json::array() },
            { "foreignEntries", Json::array() },
            { "dumps", Json::array() },
            { "audits", Json::array() },
            { "pluginPass", nullptr },
            { "expectations", Json::array() },
            { "leftOut", Json::object() } };
}

Json emptyPlugin() {
   return { { "file", nullptr },
            { "mounters", Json::array() },
            { "mounts", Json::array() },
            { "mountStatus", nullptr },
            { "mountProblems", Json::array() },
            { "lookups", Json::array() },
            { "sharedEntities", Json::array() },
            { "tcamGroups", Json::array() },
            { "ready", false } };
}

Json emptyCounters() {
   return { { "steps", 0 },        { "publishedChanges", 0 }, { "hardwareCalls", 0 },
            { "failedCalls", 0 },  { "rulesAdded", 0 },       { "rulesChanged", 0 },
            { "rulesRemoved", 0 }, { "logLines", 0 },         { "traceLines", 0 },
            { "frames", 0 },       { "expectations", 0 },     { "expectationsFailed", 0 } };
}

}  // namespace

JsonWriter::JsonWriter( std::size_t mostEntries )
      : mostEntries_( mostEntries ),
        document_{
           { "scenario", nullptr },     { "file", nullptr },        { "variant", nullptr },
           { "end", nullptr },          { "assertion", nullptr },   { "step", nullptr },
           { "stop", nullptr },         { "error", nullptr },       { "warnings", Json::array() },
           { "plugin", emptyPlugin() }, { "steps", Json::array() }, { "rules", Json::array() },
           { "frames", Json::array() }, { "log", Json::array() },   { "counters", emptyCounters() }
        } {}

void JsonWriter::onEvent( Event const & event ) {
   outcome_.onEvent( event );
   std::visit( [ this ]( auto const & what ) { take( what ); }, event );
}

void JsonWriter::write( std::ostream & out ) const {
   Json document = document_;
   document[ "end" ] = outcome_.endName();
   document[ "counters" ][ "framesDropped" ] = totals_.drops;
   document[ "counters" ][ "copies" ] = totals_.copies;
   for ( auto const & [ key, rule ] : rules_.rules() ) {
      document[ "rules" ].push_back( jsonOf( rule ) );
   }
   out << documentText( document ) << std::flush;
}

// Whether one more goes into that list of the step; takes note of it when it does not.
bool JsonWriter::hasRoom( char const * list ) {
   if ( step()[ list ].size() < mostEntries_ ) {
      return true;
   }
   Json & leftOut = step()[ "leftOut" ][ list ];
   leftOut = leftOut.is_null() ? 1 : leftOut.get< std::size_t >() + 1;
   return false;
}

void JsonWriter::count( char const * counter, std::size_t by ) {
   Json & value = document_[ "counters" ][ counter ];
   value = value.get< std::size_t >() + by;
}

// --- Where the run stands

void JsonWriter::take( RunBegins const & event ) {
   document_[ "scenario" ] = event.title;
   document_[ "file" ] = event.scenario;
}

void JsonWriter::take( StepBegins const & event ) {
   document_[ "steps" ].push_back( emptyStep( event ) );
   count( "steps" );
}

void JsonWriter::take( StepEnds const & ) {
   ruleChanges();
}

// The step that is under way is the last one.
void JsonWriter::endsEarly() {
   if ( hasStep() ) {
      ruleChanges();
      document_[ "step" ] = step()[ "number" ];
   }
}

void JsonWriter::take( BadInput const & event ) {
   endsEarly();
   document_[ "error" ] = event.text;
}

void JsonWriter::take( Warning const & event ) {
   document_[ "warnings" ].push_back( { { "step", step()[ "number" ] }, { "text", event.text } } );
}

void JsonWriter::take( Interrupted const & ) {
   endsEarly();
}

void JsonWriter::take( Stopped const & event ) {
   endsEarly();
   if ( event.assertion ) {
      document_[ "assertion" ] = jsonOf( *event.assertion );
   }
   Json traces = Json::array();
   for ( Traced const & line : event.trace ) {
      traces.push_back( jsonOf( line ) );
   }
   document_[ "stop" ] = { { "reason", event.reason },
                           { "output", event.output },
                           { "traces", std::move( traces ) },
                           { "limits", jsonOf( outcome_.limits() ) } };
}

void JsonWriter::ruleChanges() {
   Chip::RuleChanges const changes = rules_.changes();
   for ( Chip::Rule const & rule : changes.added ) {
      step()[ "rulesAdded" ].push_back( jsonOf( rule ) );
   }
   for ( Chip::RuleChange const & change : changes.changed ) {
      step()[ "rulesChanged" ].push_back(
         { { "before", jsonOf( change.before ) }, { "after", jsonOf( change.after ) } } );
   }
   for ( Chip::Rule const & rule : changes.removed ) {
      step()[ "rulesRemoved" ].push_back( jsonOf( rule ) );
   }
   count( "rulesAdded", changes.added.size() );
   count( "rulesChanged", changes.changed.size() );
   count( "rulesRemoved", changes.removed.size() );
}

// --- What the plug-in asks the agent for

void JsonWriter::take( PluginLoaded const & event ) {
   document_[ "plugin" ][ "file" ] = event.file;
   document_[ "plugin" ][ "mounters" ] = event.mounters;
}

void JsonWriter::take( MountAsked const & event ) {
   document_[ "plugin" ][ "mounts" ].push_back(
      { { "path", event.path }, { "type", event.type }, { "flags", event.flags } } );
}

void JsonWriter::take( MountsDone const & event ) {
   document_[ "plugin" ][ "mountStatus" ] = event.status;
   document_[ "plugin" ][ "mountProblems" ] = event.problems;
}

void JsonWriter::take( EntityLookedUp const & event ) {
   document_[ "plugin" ][ "lookups" ].push_back(
      { { "path", event.path }, { "type", textOrNull( event.type ) } } );
}

void JsonWriter::take( SharedEntityAsked const & event ) {
   document_[ "plugin" ][ "sharedEntities" ].push_back(
      { { "name", event.name }, { "type", textOrNull( event.type ) } } );
}

void JsonWriter::take( TcamGroupAsked const & event ) {
   document_[ "plugin" ][ "tcamGroups" ].push_back( event.group );
}

void JsonWriter::take( VariantChosen const & event ) {
   document_[ "variant" ] = event.variant;
}

void JsonWriter::take( DependencyPointReady const & event ) {
   if ( event.isOfPlugin ) {
      document_[ "plugin" ][ "ready" ] = true;
   }
}

// --- What goes on

void JsonWriter::take( PublishedChange const & event ) {
   count( "publishedChanges" );
   if ( hasStep() && hasRoom( "changes" ) ) {
      step()[ "changes" ].push_back( { { "path", event.path },
                                       { "attribute", event.attribute },
                                       { "key", textOrNull( event.key ) },
                                       { "from", jsonOf( event.from ) },
                                       { "to", jsonOf( event.to ) } } );
   }
}

void JsonWriter::take( CallMade const & event ) {
   count( "hardwareCalls" );
   count( "failedCalls", event.call.returnCode.value_or( 0 ) < 0 ? 1 : 0 );
   if ( hasRoom( "hardwareCalls" ) ) {
      step()[ "hardwareCalls" ].push_back( jsonOf( event.call ) );
   }
}

void JsonWriter::take( Traced const & event ) {
   count( "traceLines" );
   if ( hasRoom( "traces" ) ) {
      step()[ "traces" ].push_back( jsonOf( event ) );
   }
}

void JsonWriter::take( Logged const & event ) {
   count( "logLines" );
   if ( hasRoom( "log" ) ) {
      step()[ "log" ].push_back( event.line );
      document_[ "log" ].push_back(
         { { "step", step()[ "number" ] }, { "name", event.name }, { "line", event.line } } );
   }
}

void JsonWriter::take( Audited const & event ) {
   step()[ "audits" ].push_back( jsonOf( event ) );
}

// A pass that is told to begin and not to have held has stopped the process.
void JsonWriter::take( PluginPass const & event ) {
   switch ( event.state ) {
   case PluginPass::State::Begins: step()[ "pluginPass" ] = "stopped"; break;
   case PluginPass::State::Held: step()[ "pluginPass" ] = "held"; break;
   case PluginPass::State::Skipped: step()[ "pluginPass" ] = "skipped"; break;
   case PluginPass::State::Absent: step()[ "pluginPass" ] = "absent"; break;
   }
}

void JsonWriter::take( ExpectationChecked const & event ) {
   count( "expectations" );
   count( "expectationsFailed", event.held ? 0 : 1 );
   step()[ "expectations" ].push_back( { { "text", event.text },
                                         { "place", event.place },
                                         { "held", event.held },
                                         { "found", textOrNull( event.found ) } } );
}

void JsonWriter::take( FrameForwarded const & event ) {
   count( "frames" );
   totals_.add( event.frame );
   step()[ "frames" ].push_back( event.number );
   Json frame = jsonOf( event );
   frame[ "step" ] = step()[ "number" ];
   document_[ "frames" ].push_back( std::move( frame ) );
}

void JsonWriter::take( ForeignEntriesAre const & event ) {
   step()[ "foreignEntries" ].push_back( { { "unit", event.unit },
                                           { "group", event.group },
                                           { "asked", event.asked },
                                           { "held", event.held } } );
}

void JsonWriter::take( EntityDumped const & event ) {
   step()[ "dumps" ].push_back( { { "path", event.path }, { "entity", jsonOf( event.tree ) } } );
}

void JsonWriter::take( RulesDumped const & event ) {
   Json rules = Json::array();
   for ( Chip::Rule const & rule : event.rules ) {
      rules.push_back( jsonOf( rule ) );
   }
   step()[ "dumps" ].push_back( { { "rules", std::move( rules ) } } );
}

}  // namespace Story
