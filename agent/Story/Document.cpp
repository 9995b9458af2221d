#include <Story/Document.h>

#include <Story/JsonForms.h>

namespace Story {

namespace {

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

Document::Document( std::size_t mostEntries, Frames frames )
      : mostEntries_( mostEntries ),
        keepsFrames_( frames == Frames::Kept ),
        json_{
           { "scenario", nullptr },     { "file", nullptr },        { "variant", nullptr },
           { "end", nullptr },          { "assertion", nullptr },   { "step", nullptr },
           { "stop", nullptr },         { "error", nullptr },       { "warnings", Json::array() },
           { "plugin", emptyPlugin() }, { "steps", Json::array() }, { "rules", Json::array() },
           { "frames", Json::array() }, { "log", Json::array() },   { "counters", emptyCounters() }
        } {}

void Document::stepNew( StepBegins const & step ) {
   json_[ "steps" ].push_back( emptyStep( step ) );
   count( "steps" );
}

void Document::frameNew( Json const & frame ) {
   constexpr int kDepth = 2;  // in the list of the document
   if ( keepsFrames_ ) {
      frames_.add( ( frames_.isEmpty() ? "\n" : ",\n" ) + elementText( frame, kDepth ) );
   }
}

Json Document::withStep( Json const & object ) {
   Json json{ { "step", step()[ "number" ] } };
   json.update( object );
   return json;
}

bool Document::hasRoom( char const * list ) {
   if ( step()[ list ].size() < mostEntries_ ) {
      return true;
   }
   Json & leftOut = step()[ "leftOut" ][ list ];
   leftOut = leftOut.is_null() ? 1 : leftOut.get< std::size_t >() + 1;
   return false;
}

void Document::count( char const * counter, std::size_t by ) {
   Json & value = json_[ "counters" ][ counter ];
   value = value.get< std::size_t >() + by;
}

}  // namespace Story
