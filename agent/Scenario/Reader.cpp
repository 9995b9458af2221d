#include <Scenario/Reader.h>

#include <Quelm/Error.h>
#include <Scenario/Course.h>
#include <Scenario/Document.h>
#include <Scenario/File.h>
#include <Scenario/Interfaces.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>
#include <Scenario/Vocabulary.h>
#include <Trace/Trace.h>

#include <unistd.h>

namespace Scenario {

namespace {

namespace fs = std::filesystem;

// What a file's mapping is read into.
struct Document {
   Model model;
   std::vector< StepOf > steps;
   StepsReader readSteps;
   fs::path directory;  // of the file
};

// --- the words of a scenario

void readName( Reading & reading, Value const & value, Document & document ) {
   document.model.name = stringOf( reading, value ).value_or( "" );
}

void readDescription( Reading & reading, Value const & value, Document & document ) {
   document.model.description = stringOf( reading, value ).value_or( "" );
}

void readSwitchWord( Reading & reading, Value const & value, Document & document ) {
   readSwitch( reading, value, document.model );
}

void readForwardingWord( Reading & reading, Value const & value, Document & document ) {
   readForwarding( reading, value, document.model.forwarding );
}

void readEvpnWord( Reading & reading, Value const & value, Document & document ) {
   readEvpn( reading, value, document.model.published );
}

void readFeatures( Reading & reading, Value const & value, Document & document ) {
   auto const directory = stringOf( reading, value );
   if ( !directory ) {
      return;
   }
   document.model.featureFiles = document.directory / *directory;
   std::error_code error;
   if ( !fs::is_directory( document.model.featureFiles, error ) ) {
      reading.problem( value.line, "features is " + pathInQuotes( *directory ) +
                                      ", which is no directory; give the directory of the feature "
                                      "files, as a path from the scenario's directory" );
   }
}

void readTrace( Reading & reading, Value const & value, Document & document ) {
   for ( Value const & handles : mappingOf( reading, value ) ) {
      auto const text = stringOf( reading, handles );
      if ( !text ) {
         continue;
      }
      try {
         reading.traceIs( handles.name, Trace::levelsFromText( *text ) );
         document.model.trace.push_back( { handles.name, *text, handles.line } );
      } catch ( Quelm::TextError const & ) {
         reading.problem( handles.line, handles.name + " is " + inQuotes( *text ) +
                                           "; trace levels are expected, as in 0-5,9" );
      }
   }
}

void readStepsWord( Reading & reading, Value const & value, Document & document ) {
   document.readSteps( reading, value, document.steps );
}

Table< Document > const & scenarioTable() {
   static Table< Document > const table{
      { "scenario", "A whole scenario." },
      { { { "scenario", "scenario: start-up",
            Shape::of( "text", "The scenario's name, usually that of its folder." ) },
          readName },
        { { "description", "",
            Shape::of( "text", "What the scenario shows, in a sentence or two." ) },
          readDescription },
        { { "switch", "switch: { name: leaf1, ... }", Shape::of( "switch" ) }, readSwitchWord },
        { { "forwarding", "", Shape::of( "forwarding" ) }, readForwardingWord },
        { { "evpn", "", Shape::of( "evpn" ) }, readEvpnWord },
        { { "features", "",
            Shape::of( "text",
                       "The directory of the feature files (VornalL3.json), relative to this file. "
                       "This file's own directory if left out." ) },
          readFeatures },
        { { "trace", "",
            Shape::mappingOf( Shape::json( R"({"minLength": 1})" ), Shape::of( "levels" ),
                              "Text trace levels by trace handle: a handle's name, or the "
                              "beginning of one followed by '*'. Later lines win. Without a line, "
                              "VornalEvpnMounter shows levels 0 and 8, and all others level 0." ) },
          readTrace },
        { { "steps", "",
            Shape::listOf( Shape::of( "step" ),
                           "What happens after the plug-in has been loaded and has mounted its "
                           "state, in order." ) },
          readStepsWord } }
   };
   return table;
}

// --- a scenario that is based on another

struct Twin {
   std::string name;
   std::string description;
   std::string base;
   int baseLine = 1;
   std::optional< Variant > variant;
};

void readBase( Reading & reading, Value const & value, Twin & twin ) {
   twin.base = stringOf( reading, value ).value_or( "" );
   twin.baseLine = value.line;
}

void readVariant( Reading & reading, Value const & value, Twin & twin ) {
   twin.variant = choiceOf( reading, value, variants() );
}

Table< Twin > const & twinTable() {
   static Table< Twin > const table{
      { "derived-scenario",
        "A scenario that is another one under its own name, and possibly on the other variant." },
      { { { "scenario", "scenario: start-up-class-id",
            Shape::of( "text", "The scenario's name, usually that of its folder." ) },
          readText< Twin, &Twin::name > },
        { { "description", "",
            Shape::of( "text",
                       "What the scenario shows; that of the other scenario if left out." ) },
          readText< Twin, &Twin::description > },
        { { "based-on", "based-on: ../start-up/scenario.yaml",
            Shape::of( "text",
                       "The file of the other scenario, relative to this one. It must be a whole "
                       "scenario." ) },
          readBase },
        { { "variant", "", Shape::of( "variant" ) }, readVariant } }
   };
   return table;
}

// --- both

bool isTwin( Value const & document ) {
   return document.node.IsMap() && document.node[ "based-on" ];
}

// A whole scenario; with `variant` on that variant.
Model modelOf( std::string const & text, Value const & value, fs::path const & file,
               StepsReader readSteps, std::optional< Variant > variant ) {
   Reading reading( file.string(), text );
   Document document;
   document.readSteps = readSteps;
   document.directory = file.parent_path();
   document.model.file = file.string();
   document.model.featureFiles = document.directory;
   readMapping( reading, value, scenarioTable(), document );
   reading.check();

   Model model = std::move( document.model );
   model.device.variant = variant.value_or( model.device.variant );
   for ( StepOf & step : document.steps ) {
      if ( !step.onlyOn || step.onlyOn == model.device.variant ) {
         model.steps.push_back( std::move( step.step ) );
      }
   }
   followCourse( reading, model );
   reading.check();
   return model;
}

Model modelOfTwin( std::string const & text, Value const & value, fs::path const & file,
                   StepsReader readSteps ) {
   Reading reading( file.string(), text );
   Twin twin;
   readMapping( reading, value, twinTable(), twin );
   reading.check();

   auto const refuse = [ & ]( std::string const & why ) {
      reading.problem( twin.baseLine, "based-on is " + pathInQuotes( twin.base ) + why );
      reading.check();
   };
   fs::path const base = ( file.parent_path() / twin.base ).lexically_normal();
   std::error_code error;
   if ( !fs::is_regular_file( base, error ) ) {
      refuse( ", which is no file; the file of a scenario is expected, relative to this one" );
   }
   std::string const baseText = textIn( base );
   Value const document = documentIn( baseText, base.string() );
   if ( isTwin( document ) ) {
      refuse( ", which is based on another itself; name the scenario that it is based on" );
   }
   Model model = modelOf( baseText, document, base, readSteps, twin.variant );
   model.name = twin.name;
   model.description = twin.description.empty() ? model.description : twin.description;
   return model;
}

}  // namespace

Model read( fs::path const & file, StepsReader readSteps ) {
   std::string const input = "standard input";
   return file == "-" ? readText( textOf( STDIN_FILENO, input ), input, readSteps )
                      : readText( textIn( file ), file, readSteps );
}

Model readText( std::string const & text, fs::path const & file, StepsReader readSteps ) {
   Value const document = documentIn( text, file.string() );
   return isTwin( document ) ? modelOfTwin( text, document, file, readSteps )
                             : modelOf( text, document, file, readSteps, std::nullopt );
}

std::vector< WordList > vocabulary() {
   std::vector< WordList > all{ scenarioTable().list(), twinTable().list() };
   for ( auto const & part : { switchVocabulary(), interfaceVocabulary(), publishedVocabulary(),
                               forwardingVocabulary() } ) {
      all.insert( all.end(), part.begin(), part.end() );
   }
   return all;
}

}  // namespace Scenario
